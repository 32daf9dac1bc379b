// The family's two branded dialogs: COrvaneAboutDlg (application name, version and build
// date beside the product picture) and COrvaneMessageBoxDlg (a message whose web addresses
// are links that open in the desktop's browser). Both are CDialogs built from the
// templates below; an icon is passed as a wxIcon by value (wx icons share their image, so
// a copy is cheap and the dialog never depends on the caller keeping it alive).
#pragma once

#include <corlith/framework/String.h>
#include <corlith/ui/Dialog.h>
#include <corlith/ui/DialogTemplate.h>

#include <wx/bitmap.h>
#include <wx/font.h>
#include <wx/icon.h>

#include <array>

class wxButton;
class wxTextCtrl;
class wxTextUrlEvent;

namespace corlith::ui {

/// Version and build date of this library build, as the About box shows them.
inline constexpr const char* kOrvaneVersion = "2025.1.1";
inline constexpr const char* kOrvanePlatform = " (x64)";
inline constexpr int kOrvaneBuildYear = 2025;
inline constexpr int kOrvaneBuildMonth = 5;
inline constexpr int kOrvaneBuildDay = 19;

/// Item ids of the About box.
inline constexpr int IDD_ORVANE_ABOUT = 7009;
inline constexpr int IDC_ABOUT_APPLICATION_LABEL = 7010;
inline constexpr int IDC_ABOUT_VERSION_LABEL = 7011;
inline constexpr int IDC_ABOUT_BUILD_DATE_LABEL = 7012;
inline constexpr int IDC_ABOUT_APPLICATION = 7013;
inline constexpr int IDC_ABOUT_VERSION = 7014;
inline constexpr int IDC_ABOUT_BUILD_DATE = 7015;
inline constexpr int IDC_ABOUT_PICTURE = 7016;
/// Item ids of the message box (the dialog and its text share the id 7022).
inline constexpr int IDD_ORVANE_MESSAGE_BOX = 7022;
inline constexpr int IDC_MESSAGE_BOX_TEXT = 7022;

inline constexpr std::array kOrvaneAboutItems{
    DialogItem{DialogItemKind::DefaultButton, 1, "OK", 199, 199, 50, 12},
    DialogItem{DialogItemKind::Label, IDC_ABOUT_APPLICATION_LABEL, "Application:", 142, 10, 43, 8},
    DialogItem{DialogItemKind::Label, IDC_ABOUT_VERSION_LABEL, "Version:", 142, 23, 43, 8},
    DialogItem{DialogItemKind::Label, IDC_ABOUT_BUILD_DATE_LABEL, "Build date:", 142, 36, 43, 8},
    DialogItem{DialogItemKind::Label, IDC_ABOUT_APPLICATION, "", 186, 10, 63, 8},
    DialogItem{DialogItemKind::Label, IDC_ABOUT_VERSION, "", 186, 23, 63, 8},
    DialogItem{DialogItemKind::Label, IDC_ABOUT_BUILD_DATE, "", 186, 36, 63, 8},
    DialogItem{DialogItemKind::Picture, IDC_ABOUT_PICTURE, "", 6, 7, 129, 190},
};
/// The About box: 253 × 215 units; its title is replaced when it opens.
inline constexpr DialogTemplate kOrvaneAboutTemplate{
    IDD_ORVANE_ABOUT, 253, 215, "About Tessel PCB", "Tahoma", 8, false, true, kOrvaneAboutItems};

inline constexpr std::array kOrvaneMessageBoxItems{
    DialogItem{DialogItemKind::DefaultButton, 1, "OK", 229, 44, 50, 12},
    DialogItem{DialogItemKind::Custom, IDC_MESSAGE_BOX_TEXT, "", 7, 7, 270, 32},
};
/// The message box: 284 × 62 units; its title is replaced by the caption when it opens.
inline constexpr DialogTemplate kOrvaneMessageBoxTemplate{
    IDD_ORVANE_MESSAGE_BOX, 284, 62, "Orvane", "Tahoma", 8, false, true, kOrvaneMessageBoxItems};

/// The product picture (a stylised circuit board: our own art, drawn in code so that it
/// can never be missing) at `size` pixels; an empty bitmap for an empty size.
wxBitmap MakeOrvaneProductPicture(const wxSize& size);

}  // namespace corlith::ui

class COrvaneAboutDlg : public CDialog {
 public:
  /// An About box for `strAppName`, showing `hIcon` (an invalid icon shows none), without
  /// a parent.
  COrvaneAboutDlg(wxIcon hIcon, CString strAppName);
  /// An About box over `pParent`'s window; the icon and the application name stay empty.
  explicit COrvaneAboutDlg(CWnd* pParent = nullptr);

  /// Title "About " + the name, the small icon, the three fields and the picture.
  BOOL OnInitDialog() override;

 private:
  wxFont m_font;
  wxIcon m_hIcon;
  CString m_strAppName;
  wxButton* m_btnOK = nullptr;  ///< control 1, owned by the dialog's window
};

class COrvaneMessageBoxDlg : public CDialog {
 public:
  /// A message box titled `strCaption`, showing `hIcon` (an invalid icon shows none),
  /// without a parent.
  COrvaneMessageBoxDlg(wxIcon hIcon, CString strCaption);
  /// A message box over `pParent`'s window; icon and caption stay empty (so the title is
  /// empty too).
  explicit COrvaneMessageBoxDlg(CWnd* pParent = nullptr);

  /// The text shown; set it before DoModal (later changes are not shown).
  CString m_strMessage;

  /// Title = the caption, the small icon, and the message with its addresses as links.
  BOOL OnInitDialog() override;

  /// The message's text control, or null before the window exists.
  wxTextCtrl* GetRichEdit() const { return m_richEdit; }

 protected:
  /// Makes the read-only, word-wrapping, link-detecting text control for item 7022.
  wxWindow* CreateItem(wxWindow* parent, const corlith::ui::DialogItem& item, const wxRect& rect) override;
  /// A mouse event over a link: a left-button press opens the address with the desktop's
  /// default application; every other event is passed on untouched.
  virtual void OnLink(wxTextUrlEvent& event);

 private:
  wxIcon m_hIcon;
  CString m_strCaption;
  wxButton* m_btnOK = nullptr;       ///< control 1, owned by the dialog's window
  wxTextCtrl* m_richEdit = nullptr;  ///< control 7022, owned by the dialog's window
};
