#include <corlith/ui/grid/GridTable.h>

namespace corlith::ui {

namespace {

wxGridCellAttr* MakeCheckAttr(bool editable) {
  auto* attr = new wxGridCellAttr;
  attr->SetRenderer(new wxGridCellBoolRenderer);
  attr->SetEditor(new wxGridCellBoolEditor);
  attr->SetAlignment(wxALIGN_CENTRE, wxALIGN_CENTRE);
  attr->SetReadOnly(!editable);
  return attr;
}

}  // namespace

GridTable::GridTable(CGridCtrl& grid)
    : m_grid(grid),
      m_fixed(new wxGridCellAttr),
      m_readOnly(new wxGridCellAttr),
      m_check(MakeCheckAttr(true)),
      m_checkReadOnly(MakeCheckAttr(false)) {
  m_fixed->SetReadOnly(true);
  m_fixed->SetBackgroundColour(grid.GetLabelBackgroundColour());
  m_fixed->SetFont(grid.GetLabelFont());
  m_readOnly->SetReadOnly(true);
}

GridTable::~GridTable() {
  m_fixed->DecRef();
  m_readOnly->DecRef();
  m_check->DecRef();
  m_checkReadOnly->DecRef();
  for (auto& [key, attr] : m_combos) attr->DecRef();
}

int GridTable::GetNumberRows() { return static_cast<int>(m_grid.m_shown.size()); }

int GridTable::GetNumberCols() { return m_grid.m_shownCols; }

bool GridTable::ToData(int row, int col, int& dataRow, int& dataCol) const {
  dataRow = m_grid.DataRowOfViewRow(row);
  dataCol = m_grid.DataColOfViewCol(col);
  return dataRow >= 0 && dataCol >= 0;
}

wxString GridTable::GetValue(int row, int col) {
  int r = 0;
  int c = 0;
  if (!ToData(row, col, r, c)) return {};
  return ToWx(m_grid.GetData().GetItemText(r, c));
}

void GridTable::SetValue(int row, int col, const wxString& value) {
  int r = 0;
  int c = 0;
  if (ToData(row, col, r, c)) m_grid.GetData().SetItemText(r, c, FromWx(value));
}

bool GridTable::IsEmptyCell(int row, int col) {
  int r = 0;
  int c = 0;
  return !ToData(row, col, r, c) || m_grid.GetData().GetItemText(r, c).IsEmpty();
}

wxString GridTable::GetTypeName(int row, int col) {
  int r = 0;
  int c = 0;
  if (ToData(row, col, r, c) && r >= m_grid.GetFixedRowCount() && c >= m_grid.GetFixedColumnCount()) {
    switch (m_grid.GetData().GetItemKind(r, c)) {
      case GridCellKind::Check:
        return wxGRID_VALUE_BOOL;
      case GridCellKind::Combo:
        return wxGRID_VALUE_CHOICE;
      case GridCellKind::Text:
        break;
    }
  }
  return wxGRID_VALUE_STRING;
}

bool GridTable::CanGetValueAs(int row, int col, const wxString& typeName) {
  return typeName == wxGRID_VALUE_STRING || typeName == GetTypeName(row, col);
}

bool GridTable::CanSetValueAs(int row, int col, const wxString& typeName) {
  return CanGetValueAs(row, col, typeName);
}

bool GridTable::GetValueAsBool(int row, int col) {
  int r = 0;
  int c = 0;
  return ToData(row, col, r, c) && m_grid.GetData().GetItemText(r, c) == "1";
}

void GridTable::SetValueAsBool(int row, int col, bool value) {
  int r = 0;
  int c = 0;
  if (ToData(row, col, r, c)) m_grid.GetData().SetItemText(r, c, value ? "1" : "0");
}

wxString GridTable::GetRowLabelValue(int row) {
  const int r = m_grid.DataRowOfViewRow(row);
  if (r < 0 || m_grid.LabelCols() == 0) return {};
  return ToWx(m_grid.GetData().GetItemText(r, 0));
}

wxString GridTable::GetColLabelValue(int col) {
  const int c = m_grid.DataColOfViewCol(col);
  if (c < 0 || m_grid.LabelRows() == 0) return {};
  return ToWx(m_grid.GetData().GetItemText(0, c));
}

wxString GridTable::GetCornerLabelValue() const {
  if (m_grid.LabelRows() == 0 || m_grid.LabelCols() == 0 || m_grid.GetData().GetRowCount() == 0 ||
      m_grid.GetData().GetColumnCount() == 0)
    return {};
  return ToWx(m_grid.GetData().GetItemText(0, 0));
}

wxGridCellAttr* GridTable::GetAttr(int row, int col, wxGridCellAttr::wxAttrKind /*kind*/) {
  int r = 0;
  int c = 0;
  if (!ToData(row, col, r, c)) return nullptr;
  if (r < m_grid.GetFixedRowCount() || c < m_grid.GetFixedColumnCount()) return Share(m_fixed);
  const CGridData& data = m_grid.GetData();
  const bool editable = data.IsItemEditable(r, c);
  switch (data.GetItemKind(r, c)) {
    case GridCellKind::Check:
      return Share(editable ? m_check : m_checkReadOnly);
    case GridCellKind::Combo: {
      // wxGrid asks for a cell's editor again while it is open and expects the same
      // one, so cells with the same choices share one attribute, kept for good.
      const CStringArray options = data.GetItemOptions(r, c);
      std::string key(editable ? "e" : "r");
      for (INT_PTR i = 0; i < options.GetSize(); ++i) {
        key += '\n';
        key += options[i].GetString();
      }
      auto [it, added] = m_combos.try_emplace(key, nullptr);
      if (added) {
        wxArrayString choices;
        for (INT_PTR i = 0; i < options.GetSize(); ++i) choices.Add(ToWx(options[i]));
        it->second = new wxGridCellAttr;
        it->second->SetEditor(new wxGridCellChoiceEditor(choices));
        it->second->SetReadOnly(!editable);
      }
      return Share(it->second);
    }
    case GridCellKind::Text:
      break;
  }
  return editable ? nullptr : Share(m_readOnly);
}

}  // namespace corlith::ui
