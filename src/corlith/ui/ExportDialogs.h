// The export family: CExportStandard_Dlg asks for an export's target (a folder, or a file
// of the types the host lists), optionally opens the host's parameter dialog, and shows
// the progress of the export the host runs while it is up; CConfirm_Save_Check_Dlg asks
// whether unsaved input settings are to be saved (Save As..., Save or Cancel).
#pragma once

#include <corlith/framework/String.h>
#include <corlith/framework/StringArray.h>
#include <corlith/framework/Types.h>
#include <corlith/ui/Dialog.h>
#include <corlith/ui/DialogTemplate.h>

#include <array>
#include <cstdint>

class wxGauge;

namespace corlith::ui {

/// Ids of the export dialog and its items.
inline constexpr int IDD_EXPORT_STANDARD = 7020;
inline constexpr int IDC_EXPORT_PATH = 7009;
inline constexpr int IDC_EXPORT_BROWSE = 7010;
inline constexpr int IDC_EXPORT_SETTING = 7011;
inline constexpr int IDC_EXPORT_PROGRESS = 7012;
inline constexpr int IDC_EXPORT_PATH_LABEL = 7013;
inline constexpr int IDC_EXPORT_FRAME = 7014;
inline constexpr int IDC_EXPORT_STATUS = 7015;

inline constexpr std::array kExportStandardItems{
    DialogItem{DialogItemKind::Label, IDC_EXPORT_PATH_LABEL, "Export Standard File Path Select Here :", 7, 8,
               139, 8},
    DialogItem{DialogItemKind::Edit, IDC_EXPORT_PATH, "", 148, 7, 131, 14},
    DialogItem{DialogItemKind::Button, IDC_EXPORT_BROWSE, "...", 282, 7, 20, 14},
    DialogItem{DialogItemKind::Button, IDC_EXPORT_SETTING, "Parameter Settings", 7, 24, 295, 14},
    DialogItem{DialogItemKind::DefaultButton, 1, "Export", 7, 40, 146, 14},
    DialogItem{DialogItemKind::Button, 2, "Cancel", 155, 40, 147, 14},
    DialogItem{DialogItemKind::GroupBox, IDC_EXPORT_FRAME, "", 7, 53, 295, 40},
    DialogItem{DialogItemKind::Label, IDC_EXPORT_STATUS, "Exporting and Converting Status", 13, 61, 282, 8},
    DialogItem{DialogItemKind::Custom, IDC_EXPORT_PROGRESS, "", 13, 72, 283, 14},
};
/// The export dialog: 309 × 100 units.
inline constexpr DialogTemplate kExportStandardTemplate{
    IDD_EXPORT_STANDARD, 309, 100, "Export Standard Title", "Tahoma", 8, false, true, kExportStandardItems};

/// Ids of the save confirmation and its items (the text's id is ours: it is only drawn).
inline constexpr int IDD_CONFIRM_SAVE_CHECK = 7024;
inline constexpr int IDC_CONFIRM_SAVE_TEXT = 7025;
inline constexpr int IDC_CONFIRM_SAVE_AS = 7027;
inline constexpr int IDC_CONFIRM_SAVE = 7028;
inline constexpr int IDC_CONFIRM_CANCEL = 7029;

/// The text across the top, the three buttons side by side along the bottom; as the
/// dialog grows the text widens and the buttons share the width and keep to the bottom.
inline constexpr std::array kConfirmSaveCheckItems{
    DialogItem{DialogItemKind::Label, IDC_CONFIRM_SAVE_TEXT,
               "Current Input Setting Is Not Saved.  Save Input ? ", 7, 9, 171, 8, 0, kTopLeft, kTopRight},
    DialogItem{
        DialogItemKind::Button, IDC_CONFIRM_SAVE_AS, "Save As...", 7, 27, 55, 14, 0, {0, 100}, {33, 100}},
    DialogItem{DialogItemKind::Button, IDC_CONFIRM_SAVE, "Save", 65, 27, 55, 14, 0, {33, 100}, {67, 100}},
    DialogItem{
        DialogItemKind::Button, IDC_CONFIRM_CANCEL, "Cancel", 123, 27, 55, 14, 0, {67, 100}, {100, 100}},
};
/// The save confirmation: 185 × 48 units, resizable.
inline constexpr DialogTemplate kConfirmSaveCheckTemplate{
    IDD_CONFIRM_SAVE_CHECK, 185, 48, "Save Confirm Dialog", "Tahoma", 8, true, true, kConfirmSaveCheckItems};

}  // namespace corlith::ui

class CExportStandard_Dlg : public CDialog {
 public:
  explicit CExportStandard_Dlg(CWnd* pParent = nullptr);

  // Each setter only stores its text; the dialog applies the texts when it opens, and
  // an empty text leaves the template's.
  void SetInitTitle(CString text);
  void SetInitPathStaticText(CString text);
  /// The path the edit starts with (applied even when empty: the edit is bound to it).
  void SetInitDefaultPath(CString text);
  /// Lands on the "..." browse button, not on "Parameter Settings" (deliberately kept).
  void SetInitSettingBtnText(CString text);
  void SetInitProgText(CString text);

  /// Appends a file-type description; descriptions pair with extensions in order.
  void AddExtInfo(const CString& text);
  /// Appends a file extension, without the dot ("csv").
  void AddExt(const CString& text);
  /// The host's parameter dialog (not owned, must outlive this dialog); null: none, and
  /// the dialog opens without the "Parameter Settings" row.
  void SetSettingDlg(CDialog* pDlg);

  /// The path as last read from the edit (on "...", "Export"), or as set before opening.
  CString GetFilePath() const;
  /// The progress bar (0..100); null before the window exists.
  wxGauge* GetProgressBar() const;
  /// Shows `text` in the status line at once and repaints it and the progress bar before
  /// returning (handling paint and size events only), so a host may call it from its own
  /// loop while exporting. Before the window exists it is stored as the status text to
  /// open with.
  void SetProcText(CString text);

  BOOL OnInitDialog() override;
  /// Reads the path; closes with IDOK only when ValidateExport agrees.
  void OnOK() override;

  /// The file-type descriptions and extensions as they stand ("..." may have added the
  /// description "Select File").
  const CStringArray& GetExtInfos() const { return m_arrExtInfo; }
  const CStringArray& GetExts() const { return m_arrExt; }

 protected:
  /// Asked by "Export" after the path has been read into the members: FALSE keeps the
  /// dialog open (the override tells the person why). The base accepts every path.
  virtual BOOL ValidateExport();

  /// "...": asks for a folder or a file (see the class's source for the rules); an
  /// empty answer changes nothing.
  virtual void OnBrowse();
  /// "Parameter Settings": runs the parameter dialog modally.
  virtual void OnSetting();

  wxWindow* CreateItem(wxWindow* parent, const corlith::ui::DialogItem& item, const wxRect& rect) override;

 private:
  /// Hides "Parameter Settings" and moves everything below it up into its row.
  void CloseSettingRow();
  void ReadPath();
  void ShowPath();

  CString m_strTitle;
  CString m_strPathStaticText;
  CString m_strPath;
  CString m_strSettingBtnText;
  CString m_strProgText;
  CStringArray m_arrExtInfo;
  CStringArray m_arrExt;
  CDialog* m_pSettingDlg = nullptr;
  wxGauge* m_pProgress = nullptr;  ///< owned by the dialog's window
};

class CConfirm_Save_Check_Dlg : public CDialog {
 public:
  /// What the person chose.
  enum Answer : std::int32_t { kSaveAs = 0, kSave = 1, kCancel = 2 };

  explicit CConfirm_Save_Check_Dlg(CWnd* pParent = nullptr);

  /// The answer once the dialog has closed: 0 "Save As...", 1 "Save", 2 "Cancel" (also
  /// for Escape and the close box, and before the dialog has been answered).
  std::int32_t GetAnswer() const { return m_nAnswer; }

  BOOL OnInitDialog() override;
  /// Escape and the close box answer "Cancel".
  void OnCancel() override;

 private:
  void Choose(std::int32_t answer);

  std::int32_t m_nAnswer = kCancel;
};
