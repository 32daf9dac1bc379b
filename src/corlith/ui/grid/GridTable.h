// The table under CGridCtrl: answers wxGrid's questions from the grid's data, listing only
// the rows that are shown, so hiding rows changes the table's row count instead of
// sizing rows one by one. Internal to the grid.
#pragma once

#include <corlith/ui/Window.h>
#include <corlith/ui/grid/GridCtrl.h>

#include <wx/grid.h>

#include <string>
#include <unordered_map>

namespace corlith::ui {

class GridTable : public wxGridTableBase {
 public:
  explicit GridTable(CGridCtrl& grid);
  ~GridTable() override;
  GridTable(const GridTable&) = delete;
  GridTable& operator=(const GridTable&) = delete;

  int GetNumberRows() override;
  int GetNumberCols() override;
  wxString GetValue(int row, int col) override;
  void SetValue(int row, int col, const wxString& value) override;
  bool IsEmptyCell(int row, int col) override;
  wxString GetTypeName(int row, int col) override;
  bool CanGetValueAs(int row, int col, const wxString& typeName) override;
  bool CanSetValueAs(int row, int col, const wxString& typeName) override;
  bool GetValueAsBool(int row, int col) override;
  void SetValueAsBool(int row, int col, bool value) override;
  wxString GetRowLabelValue(int row) override;
  wxString GetColLabelValue(int col) override;
  wxString GetCornerLabelValue() const override;
  bool CanHaveAttributes() override { return true; }
  wxGridCellAttr* GetAttr(int row, int col, wxGridCellAttr::wxAttrKind kind) override;

 private:
  /// Data coordinates of a table cell; false outside the data.
  bool ToData(int row, int col, int& dataRow, int& dataCol) const;
  /// A shared attribute with one more reference for the caller.
  static wxGridCellAttr* Share(wxGridCellAttr* attr) {
    attr->IncRef();
    return attr;
  }

  CGridCtrl& m_grid;
  // Shared by every cell of their kind; one reference each is ours.
  wxGridCellAttr* m_fixed;
  wxGridCellAttr* m_readOnly;
  wxGridCellAttr* m_check;
  wxGridCellAttr* m_checkReadOnly;
  /// Combo cells' attributes by their choices (and editability).
  std::unordered_map<std::string, wxGridCellAttr*> m_combos;
};

}  // namespace corlith::ui
