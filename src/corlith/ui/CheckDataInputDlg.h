// The check-data-input settings dialog: a read-only view of which check items apply to
// which nets and components (two usage grids) and how nets and components are grouped
// (two lists), behind a tab strip, with a search field and an export button. The host
// fills the public members, partly before opening the dialog and partly when the dialog
// asks for them through EVT_CORLITH_REQUEST command events.
#pragma once

#include <corlith/framework/Array.h>
#include <corlith/framework/StringArray.h>
#include <corlith/text/StringEx.h>
#include <corlith/ui/Dialog.h>

#include <wx/event.h>
#include <wx/notebook.h>

#include <cstdint>
#include <memory>

class CGridCtrl;
class wxListCtrl;

namespace corlith::ui {

/// The synchronous requests a dialog makes of its host (the original's WM_USER + n
/// window messages). GetId() and GetInt() give n; GetEventObject() and GetClientData()
/// give the dialog that asks (the client data as a CCheck_Data_Input_Setting_Dlg*). The event is handed to
/// the receiving window's handler with ProcessEvent, so the host's handler has run when the sender goes on;
/// an unhandled request climbs the receiver's parents as any command event does.
wxDECLARE_EVENT(EVT_CORLITH_REQUEST, wxCommandEvent);

/// The request numbers of the check-data-input dialog (offsets from WM_USER).
enum CheckDataRequest : int {
  kRequestNetGroups = 501,        ///< to the parent: fill the net group table
  kRequestComponentGroups = 502,  ///< to the parent: fill the component group table
  kRequestComponentUsage = 503,   ///< to the parent: fill the component usage rows and flags
  kRequestExport = 600,           ///< to the export target: write the four tables
};

/// Sends request `number` to `receiver` synchronously, with `sender` as the event object
/// and `clientData` as the client data; true when a handler took it. A null receiver
/// gets nothing (false).
bool SendRequest(wxWindow* receiver, int number, wxObject& sender, void* clientData);

}  // namespace corlith::ui

/// One row of usage flags: one flag per check item, 1 meaning "applies".
using CUsageFlagArray = CArray<int, int>;
/// Usage flags: one row per usage row name.
using CUsageFlagTable = CArray<CUsageFlagArray, const CUsageFlagArray&>;

/// The dialog's tab strip: tabs only, no pages of its own (the dialog shows its grids
/// and lists over the placeholder below the strip). Confirmed tab changes arrive as
/// wxEVT_NOTEBOOK_PAGE_CHANGED.
class CCheck_Data_input_Setting_TabCtrl : public wxNotebook {
 public:
  CCheck_Data_input_Setting_TabCtrl(wxWindow* parent, int nID, const wxRect& rect);

  /// Inserts a tab with `text` before tab nItem (at the end when nItem is the count);
  /// the tab's index, or -1 when nItem is out of range.
  int InsertItem(int nItem, const CString& text);
  int GetItemCount() const { return static_cast<int>(GetPageCount()); }
  /// The tab's text; empty for an index out of range.
  CString GetItemText(int nItem) const;
  /// The selected tab, or -1.
  int GetCurSel() const { return GetSelection(); }
  /// Selects a tab without any change event (as a program's choice, not the user's); the
  /// previous selection, or -1 when nItem is out of range.
  int SetCurSel(int nItem);

 protected:
  /// Never lower than the tabs need (the toolkit's strip draws its tabs a few pixels
  /// taller than the template's 22 units give).
  void DoSetSize(int x, int y, int width, int height, int sizeFlags) override;

 private:
  int m_nMinHeight = 0;
};

class CCheck_Data_Input_Setting_Dlg : public CDialog {
 public:
  /// The dialog's template (resource 7003).
  static const corlith::ui::DialogTemplate& Template();
  /// Tab indexes, in display order.
  enum Tab : std::int32_t {
    kTabNetUsage = 0,
    kTabComponentUsage = 1,
    kTabComponentGroup = 2,
    kTabNetGroup = 3
  };
  /// The height every shown usage row gets (search and Reset).
  static constexpr int kShownRowHeight = 21;

  explicit CCheck_Data_Input_Setting_Dlg(CWnd* pParent = nullptr);
  ~CCheck_Data_Input_Setting_Dlg() override;

  // --- Filled by the host (the order is the interface's) ---
  /// Receives request 600 ("Export to Excel"); not owned; null: nothing is sent.
  CWnd* m_pExportTarget = nullptr;
  /// The window text, set on initialisation.
  CString m_strTitle;
  /// One usage row per net or net class.
  CStringArray m_arrNetUsageRowNames;
  /// One usage row per component; filled on request 503 (see RequestComponentUsage).
  CStringArray m_arrCompUsageRowNames;
  /// The columns of both usage grids.
  CStringArray m_arrCheckItemNames;
  /// m_arrNetUsageFlags[r][c] == 1: check item c applies to net row r. Missing flags
  /// (short rows) read as 0.
  CUsageFlagTable m_arrNetUsageFlags;
  /// The same for the component rows.
  CUsageFlagTable m_arrCompUsageFlags;
  /// Kept for hosts; the dialog never reads it.
  CString m_strReserved;
  /// The search field's text.
  CString m_strSearch;
  /// Row 0 "Component Group", "Component List"; rows from 1: group name, member list.
  std::unique_ptr<CStringArrayArray> m_pCompGroupTable;
  /// Row 0 "Net Group", "Net List"; rows from 1: group name, member list.
  std::unique_ptr<CStringArrayArray> m_pNetGroupTable;
  /// The tab shown.
  std::int32_t m_nCurTab = kTabNetUsage;
  /// Set at the end of OnInitDialog.
  bool m_bInitialized = false;

  BOOL OnInitDialog() override;

  /// "Apply": filters the current tab by the search text (see the .cpp).
  void OnApply();
  /// "Reset": undoes a search on the current tab and empties the search text.
  void OnReset();
  /// "Export to Excel": the three fill requests as needed, then request 600.
  void OnExport();

  // --- What the dialog made (null before OnInitDialog) ---
  CCheck_Data_input_Setting_TabCtrl* GetTabCtrl() const { return m_pTabCtrl; }
  CGridCtrl* GetNetUsageGrid() const { return m_pNetUsageGrid; }
  CGridCtrl* GetCompUsageGrid() const { return m_pCompUsageGrid; }
  wxListCtrl* GetCompGroupList() const { return m_pCompGroupList; }
  wxListCtrl* GetNetGroupList() const { return m_pNetGroupList; }

 protected:
  /// Makes the tab strip (item 7005).
  wxWindow* CreateItem(wxWindow* parent, const corlith::ui::DialogItem& item, const wxRect& rect) override;
  /// The screen height the tall-dialog rule compares with (the display's, in pixels).
  virtual int GetScreenHeight() const;

 private:
  class UsageData;

  void CreateViews();
  void BuildUsageGrid(CGridCtrl& grid, std::unique_ptr<UsageData>& data, const CStringArray& rows,
                      const CUsageFlagTable& flags);
  void FillGroupList(wxListCtrl& list, const CStringArrayArray& table, const CString& filter);
  /// The current tab's rows or groups whose name holds `search` (upper case); all of
  /// them when `search` is empty.
  void ShowMatching(const CString& search);
  void ShowTab(int nTab);
  void RequestComponentUsage();
  void RequestGroups(int nTab);
  void ReadSearchField();
  void OnTabChanged(wxBookCtrlEvent& event);
  void OnCharHook(wxKeyEvent& event);
  void LayOutViews();
  void Request(wxWindow* receiver, int number);

  CCheck_Data_input_Setting_TabCtrl* m_pTabCtrl = nullptr;
  CGridCtrl* m_pNetUsageGrid = nullptr;
  CGridCtrl* m_pCompUsageGrid = nullptr;
  wxListCtrl* m_pCompGroupList = nullptr;
  wxListCtrl* m_pNetGroupList = nullptr;
  /// What the usage grids read: views over the members above, nothing copied.
  std::unique_ptr<UsageData> m_pNetUsageData;
  std::unique_ptr<UsageData> m_pCompUsageData;
  /// The placeholder's rectangle at the design size.
  wxRect m_designPlaceholder;
};
