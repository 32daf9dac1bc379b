#include <corlith/ui/Window.h>
#include <corlith/ui/grid/GridCtrl.h>
#include <corlith/ui/grid/GridTable.h>

#include <wx/dataobj.h>
#include <wx/dcclient.h>
#include <wx/dnd.h>
#include <wx/generic/printps.h>
#include <wx/print.h>

#include <algorithm>
#include <limits>
#include <unordered_map>

using corlith::ui::FromWx;
using corlith::ui::ToWx;

wxDEFINE_EVENT(EVT_CORLITH_GRID_ROW_DCLICK, wxCommandEvent);  // NOLINT(cert-err58-cpp): wx's event type idiom

// ---------------------------------------------------------------------------------------
// CGridCellStore

CString CGridCellStore::GetItemText(int row, int col) const {
  return Contains(row, col) ? At(row, col).text : CString();
}

GridCellKind CGridCellStore::GetItemKind(int row, int col) const {
  return Contains(row, col) ? At(row, col).kind : GridCellKind::Text;
}

CStringArray CGridCellStore::GetItemOptions(int row, int col) const {
  CStringArray options;
  if (Contains(row, col))
    for (const CString& option : At(row, col).options) options.Add(option);
  return options;
}

bool CGridCellStore::IsItemEditable(int row, int col) const {
  return Contains(row, col) && At(row, col).editable;
}

bool CGridCellStore::SetItemText(int row, int col, const CString& text) {
  if (!Contains(row, col)) return false;
  At(row, col).text = text;
  return true;
}

bool CGridCellStore::SetRowCount(int n) {
  if (n < 0) return false;
  m_cells.resize(static_cast<std::size_t>(n) * static_cast<std::size_t>(m_cols));
  m_rows = n;
  return true;
}

bool CGridCellStore::SetColumnCount(int n) {
  if (n < 0) return false;
  if (n != m_cols) {
    std::vector<Cell> cells(static_cast<std::size_t>(m_rows) * static_cast<std::size_t>(n));
    const int keep = std::min(n, m_cols);
    for (int r = 0; r < m_rows; ++r)
      for (int c = 0; c < keep; ++c)
        cells[static_cast<std::size_t>(r) * static_cast<std::size_t>(n) + static_cast<std::size_t>(c)] =
            std::move(At(r, c));
    m_cells = std::move(cells);
    m_cols = n;
  }
  return true;
}

bool CGridCellStore::SetItemKind(int row, int col, GridCellKind kind) {
  if (!Contains(row, col)) return false;
  At(row, col).kind = kind;
  return true;
}

bool CGridCellStore::SetItemOptions(int row, int col, const CStringArray& options) {
  if (!Contains(row, col)) return false;
  std::vector<CString>& kept = At(row, col).options;
  kept.clear();
  for (INT_PTR i = 0; i < options.GetSize(); ++i) kept.push_back(options[i]);
  return true;
}

bool CGridCellStore::SetItemEditable(int row, int col, bool editable) {
  if (!Contains(row, col)) return false;
  At(row, col).editable = editable;
  return true;
}

// ---------------------------------------------------------------------------------------
// Printing

namespace {

constexpr int kPageMargin = 40;  // screen pixels around the printed grid
constexpr int kVerticalLabelMargin = 12;

/// Prints the grid a page of rows at a time in the order shown, the column header and
/// the other fixed rows on every page. Cells are drawn here rather than by wxGrid's
/// Render, which needs device clipping that PostScript output does not have.
class GridPrintout : public wxPrintout {
 public:
  explicit GridPrintout(CGridCtrl& grid) : wxPrintout("Grid"), m_grid(grid) {}

  int PageCount() const { return static_cast<int>(m_pages.size()); }

  void OnPreparePrinting() override {
    const wxRect area = MapToPage();
    const int available = std::max(1, area.height - HeaderHeight() - FooterHeight());
    m_pages.clear();
    const int positions = m_grid.GetNumberRows();
    int first = FixedBodyRows();
    int used = 0;
    for (int pos = first; pos < positions; ++pos) {
      const int height = m_grid.GetRowSize(m_grid.GetRowAt(pos));
      if (used > 0 && used + height > available) {
        m_pages.emplace_back(first, pos - 1);
        first = pos;
        used = 0;
      }
      used += height;
    }
    // The last page; a grid with no body rows still prints its header once.
    m_pages.emplace_back(first, positions - 1);
  }

  bool HasPage(int page) override { return page >= 1 && page <= PageCount(); }

  void GetPageInfo(int* minPage, int* maxPage, int* pageFrom, int* pageTo) override {
    *minPage = 1;
    *maxPage = PageCount();
    *pageFrom = 1;
    *pageTo = PageCount();
  }

  bool OnPrintPage(int page) override {
    if (!HasPage(page)) return false;
    wxDC& dc = *GetDC();
    const wxRect area = MapToPage();
    const auto [first, last] = m_pages[static_cast<std::size_t>(page - 1)];
    int y = area.y;
    if (m_grid.GetColLabelSize() > 0) {
      DrawHeaderRow(dc, area.x, y);
      y += m_grid.GetColLabelSize();
    }
    const int fixedBody = FixedBodyRows();
    for (int pos = 0; pos < fixedBody; ++pos) y += DrawRow(dc, area.x, y, m_grid.GetRowAt(pos), true);
    for (int pos = first; pos <= last; ++pos) y += DrawRow(dc, area.x, y, m_grid.GetRowAt(pos), false);
    dc.SetFont(m_grid.GetDefaultCellFont());
    dc.SetTextForeground(*wxBLACK);
    const wxString footer = wxString::Format("Page %d of %d", page, PageCount());
    const wxSize extent = dc.GetTextExtent(footer);
    dc.DrawText(footer, area.x + (area.width - extent.x) / 2, area.GetBottom() - extent.y);
    return true;
  }

 private:
  static constexpr int kTextMargin = 3;

  /// Maps screen pixels onto the page, shrunk further when the grid is wider than the
  /// page; returns the printable area in those units.
  wxRect MapToPage() {
    MapScreenSizeToPage();
    wxRect page = GetLogicalPageRect();
    int width = m_grid.GetRowLabelSize();
    for (int col = 0; col < m_grid.GetNumberCols(); ++col) width += m_grid.GetColSize(col);
    const int usable = page.width - 2 * kPageMargin;
    if (width > usable && width > 0) {
      double sx = 1.0;
      double sy = 1.0;
      GetDC()->GetUserScale(&sx, &sy);
      const double shrink = static_cast<double>(usable) / width;
      GetDC()->SetUserScale(sx * shrink, sy * shrink);
      page = GetLogicalPageRect();
    }
    return page.Deflate(kPageMargin);
  }

  /// Fixed rows below the column header: the first table rows (repeated on every page).
  int FixedBodyRows() const {
    int rows = 0;
    while (rows < m_grid.GetNumberRows() && m_grid.DataRowOfViewRow(rows) < m_grid.GetFixedRowCount()) ++rows;
    return rows;
  }

  int HeaderHeight() const {
    int height = m_grid.GetColLabelSize();
    for (int row = 0; row < FixedBodyRows(); ++row) height += m_grid.GetRowSize(row);
    return height;
  }

  int FooterHeight() const { return 2 * m_grid.GetCharHeight(); }

  /// Draws one cell's frame and text; vertical text reads bottom to top.
  static void DrawCell(wxDC& dc, const wxRect& rect, const wxString& text, const wxColour& background,
                       bool vertical, int alignment) {
    dc.SetBrush(wxBrush(background));
    dc.SetPen(*wxGREY_PEN);
    dc.DrawRectangle(rect);
    if (text.empty()) return;
    // Text is cut to the cell rather than clipped: a clipping region is a saved
    // graphics state in PostScript, and restoring it loses the font the output set.
    const int room = (vertical ? rect.height : rect.width) - 2 * kTextMargin;
    const wxString shown = FitText(dc, text, room);
    const wxSize extent = dc.GetTextExtent(shown);
    if (vertical) {
      dc.DrawRotatedText(shown, rect.x + (rect.width - extent.y) / 2, rect.GetBottom() - kTextMargin, 90);
    } else {
      int x = rect.x + kTextMargin;
      if ((alignment & wxALIGN_CENTRE_HORIZONTAL) != 0) x = rect.x + (rect.width - extent.x) / 2;
      if ((alignment & wxALIGN_RIGHT) != 0) x = rect.GetRight() - kTextMargin - extent.x;
      dc.DrawText(shown, x, rect.y + (rect.height - extent.y) / 2);
    }
  }

  /// The longest start of text that is at most width wide.
  static wxString FitText(wxDC& dc, const wxString& text, int width) {
    if (dc.GetTextExtent(text).x <= width) return text;
    std::size_t low = 0;               // fits
    std::size_t high = text.length();  // does not
    while (high - low > 1) {
      const std::size_t mid = (low + high) / 2;
      if (dc.GetTextExtent(text.Left(mid)).x <= width)
        low = mid;
      else
        high = mid;
    }
    return text.Left(low);
  }

  void DrawHeaderRow(wxDC& dc, int x, int y) {
    const int height = m_grid.GetColLabelSize();
    const wxColour background = m_grid.GetLabelBackgroundColour();
    dc.SetFont(m_grid.GetLabelFont());
    dc.SetTextForeground(m_grid.GetLabelTextColour());
    const bool vertical = m_grid.GetColLabelTextOrientation() == wxVERTICAL;
    if (m_grid.GetRowLabelSize() > 0) {
      DrawCell(dc, wxRect(x, y, m_grid.GetRowLabelSize(), height), m_grid.GetCornerLabelValue(), background,
               false, wxALIGN_CENTRE_HORIZONTAL);
      x += m_grid.GetRowLabelSize();
    }
    for (int pos = 0; pos < m_grid.GetNumberCols(); ++pos) {
      const int col = m_grid.GetColAt(pos);
      const int width = m_grid.GetColSize(col);
      if (width <= 0) continue;
      DrawCell(dc, wxRect(x, y, width, height), m_grid.GetColLabelValue(col), background, vertical,
               wxALIGN_CENTRE_HORIZONTAL);
      x += width;
    }
  }

  /// Draws a table row; returns its height.
  int DrawRow(wxDC& dc, int x, int y, int row, bool fixed) {
    const int height = m_grid.GetRowSize(row);
    if (m_grid.GetRowLabelSize() > 0) {
      dc.SetFont(m_grid.GetLabelFont());
      dc.SetTextForeground(m_grid.GetLabelTextColour());
      DrawCell(dc, wxRect(x, y, m_grid.GetRowLabelSize(), height), m_grid.GetRowLabelValue(row),
               m_grid.GetLabelBackgroundColour(), false, wxALIGN_LEFT);
      x += m_grid.GetRowLabelSize();
    }
    const int dataRow = m_grid.DataRowOfViewRow(row);
    for (int pos = 0; pos < m_grid.GetNumberCols(); ++pos) {
      const int col = m_grid.GetColAt(pos);
      const int width = m_grid.GetColSize(col);
      if (width <= 0) continue;
      const int dataCol = m_grid.DataColOfViewCol(col);
      const bool header = fixed || dataCol < m_grid.GetFixedColumnCount();
      wxString text = m_grid.GetCellValue(row, col);
      int alignment = wxALIGN_LEFT;
      if (!header && m_grid.GetData().GetItemKind(dataRow, dataCol) == GridCellKind::Check) {
        // A check cell prints as a mark, not as its "1" or "0".
        text = text == "1" ? "X" : "";
        alignment = wxALIGN_CENTRE_HORIZONTAL;
      }
      dc.SetFont(header ? m_grid.GetLabelFont() : m_grid.GetDefaultCellFont());
      dc.SetTextForeground(header ? m_grid.GetLabelTextColour() : m_grid.GetDefaultCellTextColour());
      DrawCell(dc, wxRect(x, y, width, height), text, header ? m_grid.GetLabelBackgroundColour() : *wxWHITE,
               false, alignment);
      x += width;
    }
    return height;
  }

  CGridCtrl& m_grid;
  std::vector<std::pair<int, int>> m_pages;  // first and last body row position
};

}  // namespace

// ---------------------------------------------------------------------------------------
// CGridCtrl

CGridCtrl::CGridCtrl() = default;

CGridCtrl::~CGridCtrl() { CloseEditor(); }

BOOL CGridCtrl::Create(const wxRect& rect, wxWindow* parent, UINT nID, DWORD dwStyle) {
  if (parent == nullptr || m_pTable != nullptr) return FALSE;
  if (!wxGrid::Create(parent, static_cast<wxWindowID>(nID), rect.GetPosition(), rect.GetSize(),
                      wxWANTS_CHARS | wxBORDER_SUNKEN))
    return FALSE;
  m_dwStyle = dwStyle;
  m_baseRowHeight = GetDefaultRowSize();
  m_baseColLabelHeight = GetColLabelSize();
  m_baseRowLabelWidth = GetRowLabelSize();
  // Text never spills into the next cell: hiding rows would otherwise make the next
  // repaint measure every neighbour.
  SetDefaultCellOverflow(false);
  Rebuild();
  m_pTable = new corlith::ui::GridTable(*this);
  SetTable(m_pTable, true, m_initialSelection);
  ApplyRowSizes();
  ApplyHeaderSizes();
  GetGridWindow()->Bind(wxEVT_MOTION, &CGridCtrl::OnGridMotion, this);
  Bind(wxEVT_GRID_CELL_BEGIN_DRAG, &CGridCtrl::OnBeginDrag, this);
  if (m_dragAndDrop) EnableDragAndDrop(true);
  return TRUE;
}

// Called before the data or its shape changes (and again by RedrawAll), so that an open
// editor's value goes to the cell it was opened on.
void CGridCtrl::CloseEditor() {
  if (m_pTable != nullptr && IsCellEditControlEnabled()) DisableCellEditControl();
}

void CGridCtrl::SetData(CGridData* data) {
  CloseEditor();
  m_pData = data != nullptr ? data : &m_store;
  m_rowHeights.clear();
  m_headerHeight = -1;
  RedrawAll();
}

BOOL CGridCtrl::SetRowCount(int n) {
  if (m_pData != &m_store || n < 0) return FALSE;
  CloseEditor();
  m_store.SetRowCount(n);
  RedrawAll();
  return TRUE;
}

BOOL CGridCtrl::SetColumnCount(int n) {
  if (m_pData != &m_store || n < 0) return FALSE;
  CloseEditor();
  m_store.SetColumnCount(n);
  RedrawAll();
  return TRUE;
}

BOOL CGridCtrl::SetFixedRowCount(int n) {
  if (n < 0) return FALSE;
  CloseEditor();
  m_fixedRows = n;
  RedrawAll();
  return TRUE;
}

BOOL CGridCtrl::SetFixedColumnCount(int n) {
  if (n < 0) return FALSE;
  CloseEditor();
  m_fixedCols = n;
  RedrawAll();
  return TRUE;
}

int CGridCtrl::GetRowCount() const { return m_pData->GetRowCount(); }

int CGridCtrl::GetColumnCount() const { return m_pData->GetColumnCount(); }

BOOL CGridCtrl::SetItemText(int row, int col, const CString& text) {
  if (!m_pData->SetItemText(row, col, text)) return FALSE;
  if (m_pTable != nullptr) {
    if (row == 0 && LabelRows() > 0 && m_verticalHeader) ApplyHeaderSizes();
    const int viewRow = ViewRowOfDataRow(row);
    const int viewCol = ViewColOfDataCol(col);
    if (viewRow >= 0 && viewCol >= 0)
      RefreshBlock(viewRow, viewCol, viewRow, viewCol);
    else
      Refresh();  // a header cell
  }
  return TRUE;
}

CString CGridCtrl::GetItemText(int row, int col) const { return m_pData->GetItemText(row, col); }

BOOL CGridCtrl::SetRowHeight(int row, int height) {
  if (row < 0 || row >= GetRowCount() || height < 0) return FALSE;
  if (row < LabelRows()) {
    m_headerHeight = height;
    ApplyHeaderSizes();
    return TRUE;
  }
  if (m_rowHeights.size() < static_cast<std::size_t>(GetRowCount()))
    m_rowHeights.resize(static_cast<std::size_t>(GetRowCount()), -1);
  int& kept = m_rowHeights[static_cast<std::size_t>(row)];
  const bool visibilityChanges = (kept == 0) != (height == 0);
  kept = height;
  if (visibilityChanges) {
    RedrawAll();
  } else if (m_pTable != nullptr) {
    SetRowSize(ViewRowOfDataRow(row), height);
  }
  return TRUE;
}

int CGridCtrl::GetRowHeight(int row) const {
  if (row < 0 || row >= GetRowCount()) return 0;
  if (row < LabelRows()) return m_pTable != nullptr ? GetColLabelSize() : std::max(m_headerHeight, 0);
  const auto index = static_cast<std::size_t>(row);
  const int kept = index < m_rowHeights.size() ? m_rowHeights[index] : -1;
  return kept >= 0 ? kept : m_baseRowHeight;
}

void CGridCtrl::SetRowHeights(const std::vector<int>& heights) {
  const int rows = GetRowCount();
  if (m_rowHeights.size() < static_cast<std::size_t>(rows))
    m_rowHeights.resize(static_cast<std::size_t>(rows), -1);
  const int count = std::min(rows, static_cast<int>(heights.size()));
  for (int row = 0; row < count; ++row) {
    const int height = heights[static_cast<std::size_t>(row)];
    if (height < 0) continue;
    if (row < LabelRows())
      m_headerHeight = height;
    else
      m_rowHeights[static_cast<std::size_t>(row)] = height;
  }
  RedrawAll();
}

bool CGridCtrl::IsRowVisible(int row) const { return GetRowCount() > row && GetRowHeight(row) > 0; }

BOOL CGridCtrl::SetColumnWidth(int col, int width) {
  if (col < 0 || col >= GetColumnCount() || width < 0) return FALSE;
  if (m_colWidths.size() < static_cast<std::size_t>(GetColumnCount()))
    m_colWidths.resize(static_cast<std::size_t>(GetColumnCount()), -1);
  m_colWidths[static_cast<std::size_t>(col)] = width;
  if (m_pTable != nullptr) {
    if (col < LabelCols())
      SetRowLabelSize(width);
    else
      SetColSize(ViewColOfDataCol(col), width);
  }
  return TRUE;
}

int CGridCtrl::GetColumnWidth(int col) const {
  if (col < 0 || col >= GetColumnCount()) return 0;
  if (m_pTable != nullptr) return col < LabelCols() ? GetRowLabelSize() : GetColSize(ViewColOfDataCol(col));
  const auto index = static_cast<std::size_t>(col);
  return index < m_colWidths.size() && m_colWidths[index] >= 0 ? m_colWidths[index]
                                                               : WXGRID_DEFAULT_COL_WIDTH;
}

void CGridCtrl::SetVerticalHeaderText(bool vertical) {
  m_verticalHeader = vertical;
  if (m_pTable != nullptr) {
    ApplyHeaderSizes();
    Refresh();
  }
}

void CGridCtrl::RedrawAll() {
  CloseEditor();
  Rebuild();
  if (m_pTable == nullptr) return;
  ClearAttrCache();
  ForceRefresh();
}

void CGridCtrl::Rebuild() {
  const int rows = GetRowCount();
  const int oldRows = static_cast<int>(m_shown.size());
  const int oldCols = m_shownCols;
  m_rowHeights.resize(static_cast<std::size_t>(rows), -1);
  m_colWidths.resize(static_cast<std::size_t>(std::max(0, GetColumnCount())), -1);
  m_shown.clear();
  m_viewOfRow.assign(static_cast<std::size_t>(rows), -1);
  for (int row = LabelRows(); row < rows; ++row) {
    if (m_rowHeights[static_cast<std::size_t>(row)] == 0) continue;
    m_viewOfRow[static_cast<std::size_t>(row)] = static_cast<int>(m_shown.size());
    m_shown.push_back(row);
  }
  m_shownCols = std::max(0, GetColumnCount() - LabelCols());
  if (m_pTable == nullptr) return;

  // One message per change of count, whatever the number of rows hidden or shown.
  BeginBatch();
  const int newRows = static_cast<int>(m_shown.size());
  if (newRows < oldRows) {
    wxGridTableMessage message(m_pTable, wxGRIDTABLE_NOTIFY_ROWS_DELETED, newRows, oldRows - newRows);
    ProcessTableMessage(message);
  } else if (newRows > oldRows) {
    wxGridTableMessage message(m_pTable, wxGRIDTABLE_NOTIFY_ROWS_APPENDED, newRows - oldRows);
    ProcessTableMessage(message);
  }
  if (m_shownCols < oldCols) {
    wxGridTableMessage message(m_pTable, wxGRIDTABLE_NOTIFY_COLS_DELETED, m_shownCols, oldCols - m_shownCols);
    ProcessTableMessage(message);
  } else if (m_shownCols > oldCols) {
    wxGridTableMessage message(m_pTable, wxGRIDTABLE_NOTIFY_COLS_APPENDED, m_shownCols - oldCols);
    ProcessTableMessage(message);
  }
  ApplyRowSizes();
  ApplyHeaderSizes();
  EndBatch();
}

void CGridCtrl::ApplyRowSizes() {
  if (m_pTable == nullptr) return;
  // The commonest height becomes the default, so the usual case (every shown row alike)
  // sets no row one by one.
  std::unordered_map<int, int> counts;
  for (const int row : m_shown) {
    const int kept = m_rowHeights[static_cast<std::size_t>(row)];
    ++counts[kept >= 0 ? kept : m_baseRowHeight];
  }
  int common = m_baseRowHeight;
  int most = 0;
  for (const auto& [height, count] : counts)
    if (count > most || (count == most && height < common)) {
      common = height;
      most = count;
    }
  wxUnsignedToIntHashMap custom;
  for (std::size_t view = 0; view < m_shown.size(); ++view) {
    const int kept = m_rowHeights[static_cast<std::size_t>(m_shown[view])];
    const int height = kept >= 0 ? kept : m_baseRowHeight;
    if (height != common) custom[static_cast<unsigned>(view)] = height;
  }
  wxGridSizesInfo sizes;
  sizes.m_sizeDefault = common;
  sizes.m_customSizes = std::move(custom);
  SetRowSizes(sizes);
}

void CGridCtrl::ApplyHeaderSizes() {
  if (m_pTable == nullptr) return;
  BeginBatch();
  SetColLabelTextOrientation(m_verticalHeader ? wxVERTICAL : wxHORIZONTAL);
  int labelHeight = 0;
  if (LabelRows() > 0) {
    if (m_headerHeight >= 0) {
      labelHeight = m_headerHeight;
    } else if (m_verticalHeader) {
      // Only the longest few labels (by characters) are measured: a text extent is
      // costly and the widest text is among them for any ordinary font.
      std::vector<std::pair<int, int>> lengths;  // (length, column)
      for (int col = LabelCols(); col < GetColumnCount(); ++col)
        lengths.emplace_back(m_pData->GetItemText(0, col).GetLength(), col);
      const std::size_t measured = std::min<std::size_t>(lengths.size(), 8);
      std::partial_sort(lengths.begin(), lengths.begin() + static_cast<std::ptrdiff_t>(measured),
                        lengths.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
      const wxFont font = GetLabelFont();
      int widest = 0;
      for (std::size_t i = 0; i < measured; ++i) {
        int width = 0;
        int height = 0;
        GetTextExtent(ToWx(m_pData->GetItemText(0, lengths[i].second)), &width, &height, nullptr, nullptr,
                      &font);
        widest = std::max(widest, width);
      }
      labelHeight = std::max(m_baseColLabelHeight, widest + kVerticalLabelMargin);
    } else {
      labelHeight = m_baseColLabelHeight;
    }
  }
  SetColLabelSize(labelHeight);
  int rowLabelWidth = 0;
  if (LabelCols() > 0)
    rowLabelWidth = !m_colWidths.empty() && m_colWidths[0] >= 0 ? m_colWidths[0] : m_baseRowLabelWidth;
  SetRowLabelSize(rowLabelWidth);
  wxUnsignedToIntHashMap custom;
  for (int view = 0; view < m_shownCols; ++view) {
    const int width = m_colWidths[static_cast<std::size_t>(DataColOfViewCol(view))];
    if (width >= 0) custom[static_cast<unsigned>(view)] = width;
  }
  wxGridSizesInfo sizes;
  sizes.m_sizeDefault = GetDefaultColSize();
  sizes.m_customSizes = std::move(custom);
  SetColSizes(sizes);
  EndBatch();
}

void CGridCtrl::EnableTitleTips(bool enable) {
  m_titleTips = enable;
  m_tipCell = CCellID();
  if (!enable && m_pTable != nullptr) GetGridWindow()->UnsetToolTip();
}

CString CGridCtrl::GetTitleTipText(int row, int col) const {
  const int viewRow = ViewRowOfDataRow(row);
  const int viewCol = ViewColOfDataCol(col);
  if (m_pTable == nullptr || viewRow < 0 || viewCol < 0) return {};
  if (row >= m_fixedRows && col >= m_fixedCols && m_pData->GetItemKind(row, col) == GridCellKind::Check)
    return {};
  const CString text = m_pData->GetItemText(row, col);
  if (text.IsEmpty()) return {};
  const wxFont font = GetCellFont(viewRow, viewCol);
  int width = 0;
  int height = 0;
  GetGridWindow()->GetTextExtent(ToWx(text), &width, &height, nullptr, nullptr, &font);
  // The cell renderer keeps a couple of pixels free on each side.
  constexpr int kTextPadding = 4;
  return width + kTextPadding > GetColSize(viewCol) ? text : CString();
}

void CGridCtrl::OnGridMotion(wxMouseEvent& event) {
  event.Skip();
  if (!m_titleTips) return;
  const CCellID cell = CellFromGridWindowPoint(event.GetPosition());
  if (cell == m_tipCell) return;
  m_tipCell = cell;
  const CString tip = cell.IsValid() ? GetTitleTipText(cell.row, cell.col) : CString();
  if (tip.IsEmpty())
    GetGridWindow()->UnsetToolTip();
  else
    GetGridWindow()->SetToolTip(ToWx(tip));
}

void CGridCtrl::EnableDragAndDrop(bool enable) {
  m_dragAndDrop = enable;
  if (m_pTable == nullptr) return;  // applied by Create
  EnableDragRowMove(enable);
  EnableDragColMove(enable);
  EnableDragCell(enable);
}

void CGridCtrl::OnBeginDrag(wxGridEvent& /*event*/) {
  // The event names the cell under the pointer once it has moved; the text dragged is
  // that of the cell pressed, where the cursor went.
  const int row = DataRowOfViewRow(GetGridCursorRow());
  const int col = DataColOfViewCol(GetGridCursorCol());
  if (row < 0 || col < 0) return;
  wxTextDataObject data(ToWx(m_pData->GetItemText(row, col)));
  wxDropSource source(data, this);
  source.DoDragDrop(wxDrag_CopyOnly);
}

CCellID CGridCtrl::GetFocusCell() const {
  if (m_pTable == nullptr) return {};
  const int row = DataRowOfViewRow(GetGridCursorRow());
  const int col = DataColOfViewCol(GetGridCursorCol());
  if (row < 0 || col < 0) return {};
  return {row, col};
}

BOOL CGridCtrl::SetFocusCell(int row, int col) {
  const int viewRow = ViewRowOfDataRow(row);
  const int viewCol = ViewColOfDataCol(col);
  if (m_pTable == nullptr || viewRow < 0 || viewCol < 0 || row < m_fixedRows || col < m_fixedCols)
    return FALSE;
  SetGridCursor(viewRow, viewCol);
  MakeCellVisible(viewRow, viewCol);
  return TRUE;
}

CCellID CGridCtrl::CellFromGridWindowPoint(const wxPoint& point) const {
  if (m_pTable == nullptr) return {};
  const wxGridCellCoords coords = XYToCell(CalcUnscrolledPosition(point));
  const int row = DataRowOfViewRow(coords.GetRow());
  const int col = DataColOfViewCol(coords.GetCol());
  if (row < 0 || col < 0) return {};
  return {row, col};
}

int CGridCtrl::Print(const CString& file) {
  if (m_pTable == nullptr) return 0;
  CloseEditor();
  GridPrintout printout(*this);
  wxPrintData printData;
  printData.SetPaperId(wxPAPER_A4);
  bool printed = false;
  if (!file.IsEmpty()) {
    // wx's own PostScript output, not the desktop's print system: no dialog and no
    // print service needed.
    printData.SetPrintMode(wxPRINT_MODE_FILE);
    printData.SetFilename(ToWx(file));
    wxPrintDialogData dialogData(printData);
    dialogData.SetFromPage(1);
    dialogData.SetToPage(std::numeric_limits<int>::max());
    wxPostScriptPrinter printer(&dialogData);
    printed = printer.Print(this, &printout, false);
  } else {
    wxPrintDialogData dialogData(printData);
    wxPrinter printer(&dialogData);
    printed = printer.Print(this, &printout, true);
  }
  return printed ? printout.PageCount() : 0;
}

int CGridCtrl::DataRowOfViewRow(int viewRow) const {
  return viewRow >= 0 && viewRow < static_cast<int>(m_shown.size())
             ? m_shown[static_cast<std::size_t>(viewRow)]
             : -1;
}

int CGridCtrl::ViewRowOfDataRow(int row) const {
  return row >= 0 && row < static_cast<int>(m_viewOfRow.size()) ? m_viewOfRow[static_cast<std::size_t>(row)]
                                                                : -1;
}

int CGridCtrl::DataColOfViewCol(int viewCol) const {
  return viewCol >= 0 && viewCol < m_shownCols ? viewCol + LabelCols() : -1;
}

int CGridCtrl::ViewColOfDataCol(int col) const {
  const int view = col - LabelCols();
  return view >= 0 && view < m_shownCols ? view : -1;
}

// ---------------------------------------------------------------------------------------
// The derived grids

CListGridCtrl::CListGridCtrl() {
  m_initialSelection = wxGridSelectRows;
  Bind(wxEVT_GRID_CELL_LEFT_CLICK, &CListGridCtrl::OnCellClick, this);
  Bind(wxEVT_GRID_CELL_LEFT_DCLICK, &CListGridCtrl::OnCellDClick, this);
}

int CListGridCtrl::GetSelectedRow() const {
  const wxArrayInt rows = GetSelectedRows();
  return rows.empty() ? -1 : DataRowOfViewRow(rows[0]);
}

void CListGridCtrl::OnCellClick(wxGridEvent& event) {
  SetGridCursor(event.GetRow(), event.GetCol());
  SelectRow(event.GetRow());
}

void CListGridCtrl::OnCellDClick(wxGridEvent& event) {
  wxCommandEvent notice(EVT_CORLITH_GRID_ROW_DCLICK, GetId());
  notice.SetEventObject(this);
  notice.SetInt(DataRowOfViewRow(event.GetRow()));
  notice.SetExtraLong(DataColOfViewCol(event.GetCol()));
  ProcessWindowEvent(notice);
}

CCheckGridCtrl::CCheckGridCtrl() { Bind(wxEVT_GRID_CELL_LEFT_CLICK, &CCheckGridCtrl::OnCellClick, this); }

void CCheckGridCtrl::OnCellClick(wxGridEvent& event) {
  const int row = DataRowOfViewRow(event.GetRow());
  const int col = DataColOfViewCol(event.GetCol());
  CGridData& data = GetData();
  if (row < GetFixedRowCount() || col < GetFixedColumnCount() ||
      data.GetItemKind(row, col) != GridCellKind::Check || !data.IsItemEditable(row, col)) {
    event.Skip();
    return;
  }
  const CString old = data.GetItemText(row, col);
  SetGridCursor(event.GetRow(), event.GetCol());
  if (!data.SetItemText(row, col, old == "1" ? "0" : "1")) return;
  RefreshBlock(event.GetRow(), event.GetCol(), event.GetRow(), event.GetCol());
  SendEvent(wxEVT_GRID_CELL_CHANGED, event.GetRow(), event.GetCol(), ToWx(old));
}
