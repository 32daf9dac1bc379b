// CGridCtrl: the cell-grid control, a thin wxGrid over a table that answers from the
// caller's data (nothing copied), with text, check and combo cells, fixed header rows and
// columns, per-row heights where 0 hides a row, title tips, drag and drop and printing.
#pragma once

#include <corlith/framework/String.h>
#include <corlith/framework/StringArray.h>
#include <corlith/framework/Types.h>

#include <wx/grid.h>

#include <memory>
#include <vector>

/// What a cell shows and how it is edited.
enum class GridCellKind {
  Text,   ///< free text, edited in place with a text box
  Check,  ///< a check box: checked when the text is "1"; an edit writes "1" or "0"
  Combo,  ///< one of GetItemOptions, chosen from a drop-down list
};

/// A cell's data coordinates (-1: none).
struct CCellID {
  int row = -1;
  int col = -1;
  bool IsValid() const { return row >= 0 && col >= 0; }
  friend bool operator==(const CCellID&, const CCellID&) = default;
};

/// The caller's data: the grid asks for each cell it draws; nothing is copied. Row and
/// column numbers count every row and column, the fixed (header) ones included.
class CGridData {
 public:
  virtual ~CGridData() = default;
  /// All rows, fixed ones included.
  virtual int GetRowCount() const = 0;
  virtual int GetColumnCount() const = 0;
  virtual CString GetItemText(int row, int col) const = 0;
  virtual GridCellKind GetItemKind(int /*row*/, int /*col*/) const { return GridCellKind::Text; }
  /// The choices of a combo cell.
  virtual CStringArray GetItemOptions(int /*row*/, int /*col*/) const { return {}; }
  /// Whether the user may edit the cell (fixed cells never are).
  virtual bool IsItemEditable(int /*row*/, int /*col*/) const { return false; }
  /// Stores an edit; false refuses it (the cell keeps its text).
  virtual bool SetItemText(int /*row*/, int /*col*/, const CString& /*text*/) { return false; }
};

/// A CGridData that keeps its own cells, for hosts that fill the grid cell by cell.
/// Cells outside the counts read as empty, not editable Text and refuse every change.
class CGridCellStore : public CGridData {
 public:
  int GetRowCount() const override { return m_rows; }
  int GetColumnCount() const override { return m_cols; }
  CString GetItemText(int row, int col) const override;
  GridCellKind GetItemKind(int row, int col) const override;
  CStringArray GetItemOptions(int row, int col) const override;
  bool IsItemEditable(int row, int col) const override;
  bool SetItemText(int row, int col, const CString& text) override;

  /// Resizes, keeping the cells that remain (new cells empty Text); false for n < 0.
  bool SetRowCount(int n);
  bool SetColumnCount(int n);
  bool SetItemKind(int row, int col, GridCellKind kind);
  bool SetItemOptions(int row, int col, const CStringArray& options);
  bool SetItemEditable(int row, int col, bool editable);

 private:
  struct Cell {
    CString text;
    GridCellKind kind = GridCellKind::Text;
    bool editable = false;
    std::vector<CString> options;
  };
  bool Contains(int row, int col) const { return row >= 0 && row < m_rows && col >= 0 && col < m_cols; }
  Cell& At(int row, int col) {
    return m_cells[static_cast<std::size_t>(row) * static_cast<std::size_t>(m_cols) +
                   static_cast<std::size_t>(col)];
  }
  const Cell& At(int row, int col) const {
    return m_cells[static_cast<std::size_t>(row) * static_cast<std::size_t>(m_cols) +
                   static_cast<std::size_t>(col)];
  }

  int m_rows = 0;
  int m_cols = 0;
  std::vector<Cell> m_cells;  // row-major
};

namespace corlith::ui {
class GridTable;
}

/// The grid window. Row and column numbers in every member are the caller's (data)
/// numbers, also while rows are hidden or moved. The first fixed row is drawn as the
/// column header and the first fixed column as the row header; further fixed rows and
/// columns are read-only cells in the header colour.
class CGridCtrl : public wxGrid {
 public:
  CGridCtrl();
  /// Closes an open editor (storing its text) before the table goes away.
  ~CGridCtrl() override;
  CGridCtrl(const CGridCtrl&) = delete;
  CGridCtrl& operator=(const CGridCtrl&) = delete;

  /// Creates the window over rect (pixels of parent) with id; dwStyle kept for reference.
  /// FALSE when parent is null or the window exists already.
  BOOL Create(const wxRect& rect, wxWindow* parent, UINT nID, DWORD dwStyle = 0x50810000);
  /// The style given to Create.
  DWORD GetStyle() const { return m_dwStyle; }

  /// The data shown (not owned; must outlive the grid or be replaced first); null: the
  /// grid's own CGridCellStore. An open editor is closed first. Row heights are reset.
  void SetData(CGridData* data);
  CGridData& GetData() const { return *m_pData; }
  CGridCellStore& GetCellStore() { return m_store; }

  /// Resize the own store (FALSE while other data is shown, or for n < 0).
  BOOL SetRowCount(int n);
  BOOL SetColumnCount(int n);
  /// How many leading rows / columns are headers (FALSE for n < 0).
  BOOL SetFixedRowCount(int n);
  BOOL SetFixedColumnCount(int n);
  int GetFixedRowCount() const { return m_fixedRows; }
  int GetFixedColumnCount() const { return m_fixedCols; }
  int GetRowCount() const;
  int GetColumnCount() const;

  /// Through the data's SetItemText; redraws the cell. FALSE when the data refuses.
  BOOL SetItemText(int row, int col, const CString& text);
  CString GetItemText(int row, int col) const;

  /// Height 0 hides the row. Kept by the control: the table shows only the rows that are
  /// not hidden, so hiding many rows is one table update. FALSE outside the rows or for
  /// a negative height.
  BOOL SetRowHeight(int row, int height);
  int GetRowHeight(int row) const;
  /// Sets many rows' heights at once (heights[i] for row i; one table update). Rows past
  /// the vector keep theirs; entries past the rows are ignored.
  void SetRowHeights(const std::vector<int>& heights);
  /// Whether the row is shown (in range and height not 0).
  bool IsRowVisible(int row) const;
  /// Width 0 hides the column.
  BOOL SetColumnWidth(int col, int width);
  int GetColumnWidth(int col) const;

  /// Row 0's (the header's) text drawn vertically, bottom to top; the header is made as
  /// tall as its longest text.
  void SetVerticalHeaderText(bool vertical);
  bool IsVerticalHeaderText() const { return m_verticalHeader; }

  /// Redraws now (after the data changed underneath, row and column counts included).
  void RedrawAll();

  /// A tooltip with a cell's full text when the cell cuts it off.
  void EnableTitleTips(bool enable = true);
  /// The title tip the cell would show: its text when cut off, else empty.
  CString GetTitleTipText(int row, int col) const;
  /// Moving rows (by their header) and columns (by theirs), and dragging a cell's text
  /// out as text (so a drag from a cell no longer selects a block of cells).
  void EnableDragAndDrop(bool enable = true);

  /// The cell with the cursor, in data numbers.
  CCellID GetFocusCell() const;
  /// Moves the cursor to a shown, non-fixed cell; FALSE otherwise.
  BOOL SetFocusCell(int row, int col);
  /// The data cell under a point of the grid window (client pixels), or none.
  CCellID CellFromGridWindowPoint(const wxPoint& point) const;

  /// Prints page by page, header rows repeated, footer "Page %d of %d"; to a printer,
  /// or to a PostScript file when file is not empty. Returns page count or 0.
  int Print(const CString& file = CString());

  /// Data row of a table row and back (-1 when hidden or out of range).
  int DataRowOfViewRow(int viewRow) const;
  int ViewRowOfDataRow(int row) const;
  /// Data column of a table column and back.
  int DataColOfViewCol(int viewCol) const;
  int ViewColOfDataCol(int col) const;

 private:
  friend class corlith::ui::GridTable;

 protected:
  /// The selection mode the window is created with (derived grids choose theirs).
  wxGridSelectionModes m_initialSelection = wxGridSelectCells;

 private:
  void Rebuild();
  void ApplyRowSizes();
  void ApplyHeaderSizes();
  void CloseEditor();
  void OnGridMotion(wxMouseEvent& event);
  void OnBeginDrag(wxGridEvent& event);
  int LabelRows() const { return m_fixedRows > 0 ? 1 : 0; }
  int LabelCols() const { return m_fixedCols > 0 ? 1 : 0; }

  CGridCellStore m_store;
  CGridData* m_pData = &m_store;
  corlith::ui::GridTable* m_pTable = nullptr;  // owned by wxGrid
  int m_fixedRows = 0;
  int m_fixedCols = 0;
  DWORD m_dwStyle = 0;
  bool m_verticalHeader = false;
  bool m_titleTips = false;
  bool m_dragAndDrop = false;
  int m_baseRowHeight = 25;
  int m_baseColLabelHeight = WXGRID_DEFAULT_COL_LABEL_HEIGHT;
  int m_baseRowLabelWidth = WXGRID_DEFAULT_ROW_LABEL_WIDTH;
  int m_headerHeight = -1;        // row 0's height when it is the header; -1: default
  std::vector<int> m_rowHeights;  // per data row; -1: default
  std::vector<int> m_colWidths;   // per data column; -1: default
  std::vector<int> m_shown;       // table row -> data row
  std::vector<int> m_viewOfRow;   // data row -> table row, -1 hidden
  int m_shownCols = 0;
  CCellID m_tipCell;
};

/// A grid for lists: a click selects the whole row, and a double click on a cell sends
/// EVT_CORLITH_GRID_ROW_DCLICK (a wxCommandEvent with the grid's id, GetInt() the data
/// row and GetExtraLong() the data column) up to the parent. Cells are not edited by a
/// double click here.
class CListGridCtrl : public CGridCtrl {
 public:
  CListGridCtrl();
  /// The data row of the selected row, or -1.
  int GetSelectedRow() const;

 private:
  void OnCellClick(wxGridEvent& event);
  void OnCellDClick(wxGridEvent& event);
};

/// A grid for flag tables: one click on an editable check cell toggles it at once (no
/// editor to open first) and sends wxEVT_GRID_CELL_CHANGED as an edit would; other
/// cells behave as in CGridCtrl.
class CCheckGridCtrl : public CGridCtrl {
 public:
  CCheckGridCtrl();

 private:
  void OnCellClick(wxGridEvent& event);
};

wxDECLARE_EVENT(EVT_CORLITH_GRID_ROW_DCLICK, wxCommandEvent);
