#include <corlith/ui/CheckDataInputDlg.h>
#include <corlith/ui/grid/GridCtrl.h>

#include <wx/display.h>
#include <wx/listctrl.h>
#include <wx/panel.h>

#include <algorithm>
#include <array>
#include <vector>

namespace corlith::ui {

wxDEFINE_EVENT(EVT_CORLITH_REQUEST, wxCommandEvent);  // NOLINT(cert-err58-cpp): wx's event type idiom

bool SendRequest(wxWindow* receiver, int number, wxObject& sender, void* clientData) {
  if (receiver == nullptr) return false;
  wxCommandEvent event(EVT_CORLITH_REQUEST, number);
  event.SetInt(number);
  event.SetEventObject(&sender);
  event.SetClientData(clientData);
  return receiver->GetEventHandler()->ProcessEvent(event);
}

}  // namespace corlith::ui

namespace {

using corlith::ui::DialogItem;
using corlith::ui::DialogItemKind;
using corlith::ui::ToWx;

constexpr int kIdTabs = 7005;
constexpr int kIdSearchLabel = 7023;
constexpr int kIdSearch = 7024;
constexpr int kIdApply = 7025;
constexpr int kIdReset = 7026;
constexpr int kIdPlaceholder = 7004;
constexpr int kIdExport = 7006;

// The placeholder grows with the dialog and the bottom buttons follow its bottom edge, so
// a dialog shrunk to fit a short screen keeps every control in view.
constexpr std::array kItems{
    DialogItem{DialogItemKind::Custom, kIdTabs, "", 4, 4, 471, 22, 0x54000000, corlith::ui::kTopLeft,
               corlith::ui::kTopRight},
    DialogItem{DialogItemKind::Label, kIdSearchLabel, "Search", 6, 31, 28, 8},
    DialogItem{DialogItemKind::Edit, kIdSearch, "", 36, 29, 366, 13, 0x50810080, corlith::ui::kTopLeft,
               corlith::ui::kTopRight},
    DialogItem{DialogItemKind::Button, kIdApply, "Apply", 405, 28, 34, 14, 0x50010000, corlith::ui::kTopRight,
               corlith::ui::kTopRight},
    DialogItem{DialogItemKind::Button, kIdReset, "Reset", 441, 28, 34, 14, 0x50010000, corlith::ui::kTopRight,
               corlith::ui::kTopRight},
    DialogItem{DialogItemKind::Label, kIdPlaceholder, "", 4, 44, 471, 387, 0x50000000, corlith::ui::kTopLeft,
               corlith::ui::kBottomRight},
    DialogItem{DialogItemKind::Button, kIdExport, "Export to Excel", 4, 435, 70, 14, 0x50010000,
               corlith::ui::kBottomLeft, corlith::ui::kBottomLeft},
    DialogItem{DialogItemKind::Button, IDCANCEL, "Close", 425, 435, 50, 14, 0x50010000,
               corlith::ui::kBottomRight, corlith::ui::kBottomRight},
};
constexpr corlith::ui::DialogTemplate kTemplate{7003, 479, 454, "", "Tahoma", 8, true, true, kItems};

CString Upper(CString text) {
  text.MakeUpper();
  return text;
}

/// The group list's column widths, in pixels.
constexpr int kGroupColumnWidth = 200;
constexpr int kListColumnWidth = 510;
/// Room beside a row name in the row names column, in pixels.
constexpr int kRowNameMargin = 16;

}  // namespace

/// A usage grid's view of the dialog's members. The counts are taken when the grid is
/// built (a host changing the arrays afterwards changes texts, not the grid's shape);
/// cells past a short flag row or past a shrunk array read as empty.
class CCheck_Data_Input_Setting_Dlg::UsageData final : public CGridData {
 public:
  UsageData(const CStringArray& rows, const CStringArray& items, const CUsageFlagTable& flags)
      : m_rows(rows),
        m_items(items),
        m_flags(flags),
        m_rowCount(static_cast<int>(rows.GetSize()) + 1),
        m_colCount(static_cast<int>(items.GetSize()) + 1) {}

  int GetRowCount() const override { return m_rowCount; }
  int GetColumnCount() const override { return m_colCount; }
  CString GetItemText(int row, int col) const override {
    if (row == 0) return col >= 1 && col - 1 < m_items.GetSize() ? m_items[col - 1] : CString();
    if (col == 0) return row - 1 < m_rows.GetSize() ? m_rows[row - 1] : CString();
    if (row - 1 >= m_flags.GetSize()) return {};
    const CUsageFlagArray& flags = m_flags[row - 1];
    return col - 1 < flags.GetSize() && flags[col - 1] == 1 ? CString("O") : CString();
  }

 private:
  const CStringArray& m_rows;
  const CStringArray& m_items;
  const CUsageFlagTable& m_flags;
  int m_rowCount;
  int m_colCount;
};

// --- The tab strip ---

CCheck_Data_input_Setting_TabCtrl::CCheck_Data_input_Setting_TabCtrl(wxWindow* parent, int nID,
                                                                     const wxRect& rect)
    : wxNotebook(parent, nID, rect.GetPosition(), rect.GetSize()) {}

int CCheck_Data_input_Setting_TabCtrl::InsertItem(int nItem, const CString& text) {
  if (nItem < 0 || nItem > GetItemCount()) return -1;
  // Each tab needs a page; an empty one, as the strip shows nothing below its tabs.
  auto* page = new wxPanel(this);
  if (!InsertPage(static_cast<std::size_t>(nItem), page, ToWx(text), false)) {
    page->Destroy();
    return -1;
  }
  InvalidateBestSize();
  m_nMinHeight = GetBestSize().y;
  if (GetSize().y < m_nMinHeight) SetSize(GetSize().x, m_nMinHeight);
  return nItem;
}

void CCheck_Data_input_Setting_TabCtrl::DoSetSize(int x, int y, int width, int height, int sizeFlags) {
  if (height != wxDefaultCoord) height = std::max(height, m_nMinHeight);
  wxNotebook::DoSetSize(x, y, width, height, sizeFlags);
}

CString CCheck_Data_input_Setting_TabCtrl::GetItemText(int nItem) const {
  if (nItem < 0 || nItem >= GetItemCount()) return {};
  return corlith::ui::FromWx(GetPageText(static_cast<std::size_t>(nItem)));
}

int CCheck_Data_input_Setting_TabCtrl::SetCurSel(int nItem) {
  if (nItem < 0 || nItem >= GetItemCount()) return -1;
  return ChangeSelection(static_cast<std::size_t>(nItem));
}

// --- The dialog ---

const corlith::ui::DialogTemplate& CCheck_Data_Input_Setting_Dlg::Template() { return kTemplate; }

CCheck_Data_Input_Setting_Dlg::CCheck_Data_Input_Setting_Dlg(CWnd* pParent)
    : CDialog(kTemplate, pParent),
      m_pCompGroupTable(std::make_unique<CStringArrayArray>()),
      m_pNetGroupTable(std::make_unique<CStringArrayArray>()) {
  auto header = [](const char* group, const char* list) {
    auto row = std::make_unique<CStringArray>();
    row->Add(group);
    row->Add(list);
    return row;
  };
  m_pCompGroupTable->Add(header("Component Group", "Component List").release());
  m_pNetGroupTable->Add(header("Net Group", "Net List").release());
}

CCheck_Data_Input_Setting_Dlg::~CCheck_Data_Input_Setting_Dlg() {
  // The grids read the members through UsageData: they go before the members do.
  DestroyChildren();
}

wxWindow* CCheck_Data_Input_Setting_Dlg::CreateItem(wxWindow* parent, const corlith::ui::DialogItem& item,
                                                    const wxRect& rect) {
  if (item.id != kIdTabs) return nullptr;
  m_pTabCtrl = new CCheck_Data_input_Setting_TabCtrl(parent, item.id, rect);
  return m_pTabCtrl;
}

int CCheck_Data_Input_Setting_Dlg::GetScreenHeight() const {
  const int display = wxDisplay::GetFromWindow(this);
  return wxDisplay(display == wxNOT_FOUND ? 0U : static_cast<unsigned>(display)).GetGeometry().GetHeight();
}

BOOL CCheck_Data_Input_Setting_Dlg::OnInitDialog() {
  CDialog::OnInitDialog();
  SetWindowText(m_strTitle);
  m_designPlaceholder = GetDlgItem(kIdPlaceholder)->GetRect();

  const int limit = GetScreenHeight() - 100;
  if (GetSize().y > limit && limit > 0) {
    // The design size was the smallest allowed; now the shrunk size is.
    SetMinSize(wxDefaultSize);
    SetMinClientSize(wxDefaultSize);
    SetSize(wxSize(GetSize().x, limit));
    SetMinClientSize(GetClientSize());
  }

  m_pTabCtrl->InsertItem(0, "Net Usage");
  m_pTabCtrl->InsertItem(1, "Componet Usage");
  m_pTabCtrl->InsertItem(2, "Net Group");
  // deliberate: inserted after "Net Group" at its place, so it lands before it.
  m_pTabCtrl->InsertItem(2, "Component Group");
  m_pTabCtrl->SetCurSel(kTabNetUsage);
  m_nCurTab = kTabNetUsage;

  CreateViews();
  BuildUsageGrid(*m_pNetUsageGrid, m_pNetUsageData, m_arrNetUsageRowNames, m_arrNetUsageFlags);
  FillGroupList(*m_pCompGroupList, *m_pCompGroupTable, CString());
  FillGroupList(*m_pNetGroupList, *m_pNetGroupTable, CString());
  ShowTab(kTabNetUsage);
  SetDlgItemText(kIdSearch, m_strSearch);

  m_pTabCtrl->Bind(wxEVT_NOTEBOOK_PAGE_CHANGED, &CCheck_Data_Input_Setting_Dlg::OnTabChanged, this);
  Bind(
      wxEVT_BUTTON, [this](wxCommandEvent&) { OnApply(); }, kIdApply);
  Bind(
      wxEVT_BUTTON, [this](wxCommandEvent&) { OnReset(); }, kIdReset);
  Bind(
      wxEVT_BUTTON, [this](wxCommandEvent&) { OnExport(); }, kIdExport);
  Bind(wxEVT_CHAR_HOOK, &CCheck_Data_Input_Setting_Dlg::OnCharHook, this);
  Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
    event.Skip();
    LayOutViews();
  });
  LayOutViews();
  m_bInitialized = true;
  return TRUE;
}

void CCheck_Data_Input_Setting_Dlg::CreateViews() {
  const wxRect rect = m_designPlaceholder;
  m_pNetUsageGrid = new CGridCtrl();
  m_pNetUsageGrid->Create(rect, this, wxID_ANY, 0x50810000);
  m_pCompUsageGrid = new CGridCtrl();
  m_pCompUsageGrid->Create(rect, this, wxID_ANY, 0x50810000);
  // The component grid stays without data until its rows are requested.
  m_pCompUsageGrid->SetFixedRowCount(1);
  m_pCompUsageGrid->SetFixedColumnCount(1);

  auto makeList = [this, &rect](const CStringArrayArray& table) {
    // Read-only view: the original style's label editing is not offered.
    auto* list = new wxListCtrl(this, wxID_ANY, rect.GetPosition(), rect.GetSize(),
                                wxLC_REPORT | wxLC_SINGLE_SEL | wxBORDER_SUNKEN);
    const CStringArray* header = table.GetAt(0);
    auto headerText = [header](INT_PTR i) {
      return header != nullptr && i < header->GetSize() ? ToWx((*header)[i]) : wxString();
    };
    list->InsertColumn(0, headerText(0), wxLIST_FORMAT_LEFT, kGroupColumnWidth);
    list->InsertColumn(1, headerText(1), wxLIST_FORMAT_LEFT, kListColumnWidth);
    return list;
  };
  m_pCompGroupList = makeList(*m_pCompGroupTable);
  m_pNetGroupList = makeList(*m_pNetGroupTable);
}

void CCheck_Data_Input_Setting_Dlg::LayOutViews() {
  if (m_pNetUsageGrid == nullptr) return;
  // The views take the placeholder's rectangle, which grows by what the dialog gained.
  const wxSize gained = GetClientSize() - GetDesignClientSize();
  wxRect rect = m_designPlaceholder;
  rect.SetSize(wxSize(std::max(0, rect.width + gained.x), std::max(0, rect.height + gained.y)));
  for (wxWindow* view : std::initializer_list<wxWindow*>{m_pNetUsageGrid, m_pCompUsageGrid, m_pCompGroupList,
                                                         m_pNetGroupList}) {
    view->SetSize(rect);
  }
}

void CCheck_Data_Input_Setting_Dlg::BuildUsageGrid(CGridCtrl& grid, std::unique_ptr<UsageData>& data,
                                                   const CStringArray& rows, const CUsageFlagTable& flags) {
  // The new view replaces the old one in the grid before the old one goes.
  auto fresh = std::make_unique<UsageData>(rows, m_arrCheckItemNames, flags);
  grid.SetData(fresh.get());
  data = std::move(fresh);
  grid.SetFixedRowCount(1);
  grid.SetFixedColumnCount(1);
  grid.SetVerticalHeaderText(true);

  // The row names column fits the widest of the longest names (measuring every name of
  // a board's nets would cost more than building the grid).
  {
    std::vector<std::pair<int, INT_PTR>> longest;
    for (INT_PTR r = 0; r < rows.GetSize(); ++r) longest.emplace_back(rows[r].GetLength(), r);
    const std::size_t measured = std::min<std::size_t>(longest.size(), 8);
    std::partial_sort(longest.begin(), longest.begin() + static_cast<std::ptrdiff_t>(measured), longest.end(),
                      [](const auto& a, const auto& b) { return a.first > b.first; });
    const wxFont font = grid.GetLabelFont();
    int widest = 0;
    for (std::size_t i = 0; i < measured; ++i) {
      int width = 0;
      grid.GetTextExtent(ToWx(rows[longest[i].second]), &width, nullptr, nullptr, nullptr, &font);
      widest = std::max(widest, width);
    }
    if (widest > 0) grid.SetColumnWidth(0, widest + kRowNameMargin);
  }

  const int rowCount = data->GetRowCount();
  std::vector<int> heights(static_cast<std::size_t>(rowCount), kShownRowHeight);
  heights[0] = grid.GetRowHeight(0);
  if (!m_arrCheckItemNames.IsEmpty()) {
    // The names stand vertically: the header is as tall as the widest name, each item
    // column as wide as 1.5 times its name's height.
    const wxFont font = grid.GetLabelFont();
    int widest = 0;
    for (INT_PTR i = 0; i < m_arrCheckItemNames.GetSize(); ++i) {
      int width = 0;
      int height = 0;
      grid.GetTextExtent(ToWx(m_arrCheckItemNames[i]), &width, &height, nullptr, nullptr, &font);
      widest = std::max(widest, width);
      grid.SetColumnWidth(static_cast<int>(i) + 1, height * 3 / 2);
    }
    heights[0] = widest;
  }
  grid.SetRowHeights(heights);
}

void CCheck_Data_Input_Setting_Dlg::FillGroupList(wxListCtrl& list, const CStringArrayArray& table,
                                                  const CString& filter) {
  list.Freeze();
  list.DeleteAllItems();
  long at = 0;
  for (INT_PTR r = 1; r < table.GetSize(); ++r) {
    const CStringArray* row = table.GetAt(r);
    if (row == nullptr || row->GetSize() < 2) break;
    // Only the member list is searched, never the group's name.
    if (!filter.IsEmpty() && Upper((*row)[1]).Find(filter.GetString()) < 0) continue;
    const long item = list.InsertItem(at++, ToWx((*row)[0]));
    list.SetItem(item, 1, ToWx((*row)[1]));
  }
  list.Thaw();
}

void CCheck_Data_Input_Setting_Dlg::ShowTab(int nTab) {
  if (nTab == kTabComponentUsage) RequestComponentUsage();
  if (nTab == kTabComponentGroup || nTab == kTabNetGroup) RequestGroups(nTab);
  m_pNetUsageGrid->Show(nTab == kTabNetUsage);
  m_pCompUsageGrid->Show(nTab == kTabComponentUsage);
  m_pCompGroupList->Show(nTab == kTabComponentGroup);
  m_pNetGroupList->Show(nTab == kTabNetGroup);
}

void CCheck_Data_Input_Setting_Dlg::RequestComponentUsage() {
  // deliberate: rows a host filled before opening the dialog are never shown; the grid
  // is built only from rows that arrive on request.
  if (!m_arrCompUsageRowNames.IsEmpty()) return;
  Request(GetParent(), corlith::ui::kRequestComponentUsage);
  BuildUsageGrid(*m_pCompUsageGrid, m_pCompUsageData, m_arrCompUsageRowNames, m_arrCompUsageFlags);
}

void CCheck_Data_Input_Setting_Dlg::RequestGroups(int nTab) {
  const bool net = nTab == kTabNetGroup;
  CStringArrayArray& table = net ? *m_pNetGroupTable : *m_pCompGroupTable;
  if (table.GetSize() <= 1) {
    Request(GetParent(), net ? corlith::ui::kRequestNetGroups : corlith::ui::kRequestComponentGroups);
  }
  if (m_pNetGroupList != nullptr) FillGroupList(net ? *m_pNetGroupList : *m_pCompGroupList, table, CString());
}

void CCheck_Data_Input_Setting_Dlg::Request(wxWindow* receiver, int number) {
  corlith::ui::SendRequest(receiver, number, *this, static_cast<CCheck_Data_Input_Setting_Dlg*>(this));
}

void CCheck_Data_Input_Setting_Dlg::ReadSearchField() {
  if (GetDlgItem(kIdSearch) != nullptr) m_strSearch = GetDlgItemText(kIdSearch);
}

void CCheck_Data_Input_Setting_Dlg::OnApply() {
  if (!m_bInitialized) return;
  ReadSearchField();
  if (m_strSearch.IsEmpty()) return;
  ShowMatching(Upper(m_strSearch));
}

void CCheck_Data_Input_Setting_Dlg::OnReset() {
  if (!m_bInitialized) return;
  ReadSearchField();
  if (m_strSearch.IsEmpty()) return;
  ShowMatching(CString());
  m_strSearch.Empty();
  SetDlgItemText(kIdSearch, m_strSearch);
}

void CCheck_Data_Input_Setting_Dlg::ShowMatching(const CString& search) {
  switch (m_nCurTab) {
    case kTabNetUsage:
    case kTabComponentUsage: {
      const bool net = m_nCurTab == kTabNetUsage;
      CGridCtrl& grid = net ? *m_pNetUsageGrid : *m_pCompUsageGrid;
      const CStringArray& names = net ? m_arrNetUsageRowNames : m_arrCompUsageRowNames;
      const int rowCount = grid.GetRowCount();
      if (rowCount == 0) return;
      std::vector<int> heights(static_cast<std::size_t>(rowCount), search.IsEmpty() ? kShownRowHeight : 0);
      heights[0] = grid.GetRowHeight(0);
      if (!search.IsEmpty()) {
        for (int r = 1; r < rowCount && r - 1 < names.GetSize(); ++r) {
          if (Upper(names[r - 1]).Find(search.GetString()) >= 0)
            heights[static_cast<std::size_t>(r)] = kShownRowHeight;
        }
      }
      grid.SetRowHeights(heights);
      break;
    }
    case kTabComponentGroup:
      FillGroupList(*m_pCompGroupList, *m_pCompGroupTable, search);
      break;
    case kTabNetGroup:
      FillGroupList(*m_pNetGroupList, *m_pNetGroupTable, search);
      break;
    default:
      break;
  }
}

void CCheck_Data_Input_Setting_Dlg::OnExport() {
  if (!m_bInitialized) return;
  RequestComponentUsage();
  if (m_pNetGroupTable->GetSize() <= 1) {
    Request(GetParent(), corlith::ui::kRequestNetGroups);
  }
  if (m_pCompGroupTable->GetSize() <= 1) {
    Request(GetParent(), corlith::ui::kRequestComponentGroups);
  }
  if (m_pExportTarget != nullptr) {
    Request(m_pExportTarget->GetWxWindow(), corlith::ui::kRequestExport);
  }
}

void CCheck_Data_Input_Setting_Dlg::OnTabChanged(wxBookCtrlEvent& event) {
  event.Skip();
  if (!m_bInitialized || event.GetEventObject() != m_pTabCtrl) return;
  const int tab = event.GetSelection();
  if (tab < 0 || tab == m_nCurTab) return;
  // The search is undone on the tab being left, then the new tab shows in full.
  OnReset();
  m_nCurTab = tab;
  ShowTab(tab);
}

void CCheck_Data_Input_Setting_Dlg::OnCharHook(wxKeyEvent& event) {
  // Enter neither closes the dialog nor presses a button; every other key goes on.
  if (event.GetKeyCode() == WXK_RETURN || event.GetKeyCode() == WXK_NUMPAD_ENTER) return;
  event.Skip();
}
