// CDialog: the framework's dialog on wx. A dialog object is made from its template and
// builds its window on DoModal (modal) or Create (modeless), then runs OnInitDialog, as
// the original does. Button 1 (IDOK) runs OnOK and button 2 (IDCANCEL), Escape and the
// close box run OnCancel; both end the dialog with their id, which DoModal returns.
// A resizable template moves and sizes its items by their anchors as the dialog's size
// changes (the original toolkit's resizable dialog).
#pragma once

#include <corlith/ui/DialogTemplate.h>
#include <corlith/ui/Window.h>

#include <wx/dialog.h>

#include <vector>

class CDialog : public wxDialog, public CWnd {
 public:
  /// A dialog of `tpl` (which must outlive it) with `pParent`'s window as parent (null:
  /// none). No window exists until DoModal or Create.
  explicit CDialog(const corlith::ui::DialogTemplate& tpl, CWnd* pParent = nullptr);
  ~CDialog() override;
  CDialog(const CDialog&) = delete;
  CDialog& operator=(const CDialog&) = delete;

  /// Builds the window and its items, initialises it, shows it modally and returns the
  /// code it ended with (IDOK, IDCANCEL, or EndDialog's value); -1 when the window cannot
  /// be made or is showing. Shown again, the dialog gets fresh items and OnInitDialog
  /// runs again, as with the original's new window; the members keep what they hold.
  INT_PTR DoModal();
  /// Builds and initialises the window without showing it (a modeless dialog); FALSE
  /// when it cannot be made or already exists.
  BOOL Create(CWnd* pParent = nullptr);

  /// Runs once the items exist, before the dialog shows. Returns TRUE (the base does
  /// nothing else).
  virtual BOOL OnInitDialog();
  /// Ends the dialog with IDOK.
  virtual void OnOK();
  /// Ends the dialog with IDCANCEL.
  virtual void OnCancel();
  /// Ends a modal dialog with nResult (DoModal returns it); hides a modeless one.
  void EndDialog(int nResult);

  /// The item with this id, or null.
  wxWindow* GetDlgItem(int nID) const;
  void SetDlgItemText(int nID, const CString& text);
  CString GetDlgItemText(int nID) const;
  const corlith::ui::DialogTemplate& GetTemplate() const { return m_template; }

 protected:
  /// Makes the control of a Custom item (or of any item, to replace the builder's):
  /// null lets the builder make it.
  virtual wxWindow* CreateItem(wxWindow* parent, const corlith::ui::DialogItem& item, const wxRect& rect);
  /// The client size the template was built with, in pixels.
  wxSize GetDesignClientSize() const { return m_designClient; }

 private:
  bool MakeWindow();
  void BuildItems();
  void OnSizeChanged(wxSizeEvent& event);

  const corlith::ui::DialogTemplate& m_template;
  wxWindow* m_pParentWindow;
  wxSize m_designClient;
  /// Each anchored item's rectangle at the design size (resizable templates).
  std::vector<std::pair<wxWindow*, wxRect>> m_designRects;
};
