// The cell-grid control on a real window: editing through simulated input, title tips,
// rows and columns moved by dragging, hidden rows skipped by the cursor keys, printing
// to PostScript read back as text, and the two derived grids.
#include <corlith/test/TempFolder.h>
#include <corlith/ui/grid/GridCtrl.h>

#include <wx/app.h>
#include <wx/dnd.h>
#include <wx/frame.h>
#include <wx/panel.h>
#include <wx/uiaction.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "UiTestEnvironment.h"

namespace {

constexpr UINT kGridId = 4100;

/// Runs a shell command and returns its standard output.
std::string RunCommand(const std::string& command) {
  std::string output;
  std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  if (!pipe) return output;
  char buffer[4096];
  for (std::size_t n = 0; (n = fread(buffer, 1, sizeof buffer, pipe.get())) > 0;) output.append(buffer, n);
  return output;
}

/// Delivers events for about `milliseconds` with the windows enabled: simulated input
/// needs them so (the shared Pump yields with every window disabled, which drops it).
void Settle(int milliseconds) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
  do {
    wxTheApp->Yield(true);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  } while (std::chrono::steady_clock::now() < end);
}

/// Keeps the text dropped on its window.
class TextCatcher : public wxTextDropTarget {
 public:
  explicit TextCatcher(wxString& text) : m_text(text) {}
  bool OnDropText(wxCoord /*x*/, wxCoord /*y*/, const wxString& text) override {
    m_text = text;
    return true;
  }

 private:
  wxString& m_text;
};

/// A top-level frame holding one grid of type G; gone with the test.
template <typename G = CGridCtrl>
class GridWindow {
 public:
  GridWindow() : m_frame(new wxFrame(nullptr, wxID_ANY, "Grid", wxPoint(0, 0), wxSize(700, 500))) {
    m_grid = new G;
    EXPECT_TRUE(m_grid->Create(wxRect(0, 0, 680, 460), m_frame, kGridId));
  }
  ~GridWindow() {
    m_frame->Destroy();
    Settle(20);
  }
  GridWindow(const GridWindow&) = delete;
  GridWindow& operator=(const GridWindow&) = delete;

  G& Grid() { return *m_grid; }
  wxFrame& Frame() { return *m_frame; }
  void Show() {
    m_frame->Show();
    m_frame->Raise();
    Settle(150);
  }
  /// Screen centre of a data cell.
  wxPoint CellCentre(int row, int col) {
    const wxRect rect = m_grid->CellToRect(m_grid->ViewRowOfDataRow(row), m_grid->ViewColOfDataCol(col));
    const wxPoint client =
        m_grid->CalcScrolledPosition(rect.GetPosition() + wxPoint(rect.width / 2, rect.height / 2));
    return m_grid->GetGridWindow()->ClientToScreen(client);
  }

 private:
  wxFrame* m_frame;
  G* m_grid;  // owned by the frame
};

/// A header row and column, then rows "r<row>c<col>".
void Fill(CGridCtrl& grid, int rows, int cols) {
  grid.SetRowCount(rows);
  grid.SetColumnCount(cols);
  grid.SetFixedRowCount(1);
  grid.SetFixedColumnCount(1);
  for (int r = 0; r < rows; ++r)
    for (int c = 0; c < cols; ++c) {
      const std::string text =
          r == 0 ? "Head " + std::to_string(c) : "r" + std::to_string(r) + "c" + std::to_string(c);
      grid.GetCellStore().SetItemText(r, c, CString(text));
    }
  grid.RedrawAll();
}

TEST(GridCtrl, EachCellKindIsEditedThroughInput) {
  CORLITH_REQUIRE_DISPLAY();
  struct Row {
    const char* name;
    GridCellKind kind;
    std::function<void(wxUIActionSimulator&)> type;
    const char* before;
    const char* after;
  };
  const std::vector<Row> rows{
      {"text: typed then Enter", GridCellKind::Text,
       [](wxUIActionSimulator& input) {
         input.Text("abc");
         Settle(50);
         input.Char(WXK_RETURN);
       },
       "old", "abc"},
      {"check: space toggles on", GridCellKind::Check, [](wxUIActionSimulator& input) { input.Char(' '); },
       "0", "1"},
      {"check: space toggles off", GridCellKind::Check, [](wxUIActionSimulator& input) { input.Char(' '); },
       "1", "0"},
      {"combo: next choice", GridCellKind::Combo,
       [](wxUIActionSimulator& input) {
         input.Char(WXK_F2);
         Settle(100);
         input.Char(WXK_DOWN);
         Settle(100);
         input.Char(WXK_RETURN);
         Settle(100);
         input.Char(WXK_RETURN);
       },
       "Beta", "Gamma"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    GridWindow window;
    CGridCtrl& grid = window.Grid();
    Fill(grid, 4, 4);
    CGridCellStore& store = grid.GetCellStore();
    store.SetItemKind(2, 2, row.kind);
    store.SetItemEditable(2, 2, true);
    CStringArray options;
    for (const char* option : {"Alpha", "Beta", "Gamma"}) options.Add(option);
    store.SetItemOptions(2, 2, options);
    store.SetItemText(2, 2, row.before);
    grid.RedrawAll();
    int changed = 0;
    grid.Bind(wxEVT_GRID_CELL_CHANGED, [&](wxGridEvent& event) {
      ++changed;
      event.Skip();
    });
    window.Show();
    ASSERT_TRUE(grid.SetFocusCell(2, 2));
    grid.SetFocus();
    Settle(100);
    wxUIActionSimulator input;
    row.type(input);
    Settle(200);
    EXPECT_EQ(grid.GetItemText(2, 2), row.after);
    EXPECT_EQ(changed, 1);
    EXPECT_EQ(grid.GetItemText(2, 1), "r2c1") << "the neighbour is untouched";
  }
}

TEST(GridCtrl, ReadOnlyAndFixedCellsRefuseTyping) {
  CORLITH_REQUIRE_DISPLAY();
  GridWindow window;
  CGridCtrl& grid = window.Grid();
  Fill(grid, 4, 4);
  window.Show();
  ASSERT_TRUE(grid.SetFocusCell(2, 2));
  grid.SetFocus();
  Settle(100);
  wxUIActionSimulator input;
  input.Text("zz");
  input.Char(WXK_RETURN);
  Settle(200);
  EXPECT_EQ(grid.GetItemText(2, 2), "r2c2");
  EXPECT_FALSE(grid.SetFocusCell(0, 2)) << "the header row takes no cursor";
  EXPECT_FALSE(grid.SetFocusCell(2, 0)) << "the header column takes no cursor";
}

TEST(GridCtrl, TitleTipShowsTheFullTextOfACutOffCellOnly) {
  CORLITH_REQUIRE_DISPLAY();
  GridWindow window;
  CGridCtrl& grid = window.Grid();
  Fill(grid, 4, 4);
  const CString longText = "a text far too long for a column of sixty pixels";
  grid.SetItemText(1, 1, longText);
  grid.SetItemText(1, 2, "ok");
  grid.SetColumnWidth(1, 60);
  grid.SetColumnWidth(2, 60);
  grid.EnableTitleTips();
  window.Show();
  struct Row {
    int row;
    int col;
    CString tip;
  };
  for (const Row& row : {Row{1, 1, longText}, Row{1, 2, ""}, Row{1, 1, longText}}) {
    SCOPED_TRACE(row.col);
    wxUIActionSimulator input;
    input.MouseMove(window.CellCentre(row.row, row.col));
    Settle(150);
    EXPECT_EQ(grid.GetTitleTipText(row.row, row.col), row.tip);
    EXPECT_EQ(grid.GetGridWindow()->GetToolTipText().utf8_string(), std::string(row.tip.GetString()));
  }
}

TEST(GridCtrl, DraggingAHeaderMovesItsRowOrColumn) {
  CORLITH_REQUIRE_DISPLAY();
  struct Row {
    const char* name;
    bool column;
  };
  for (const Row& row : {Row{"column", true}, Row{"row", false}}) {
    SCOPED_TRACE(row.name);
    GridWindow window;
    CGridCtrl& grid = window.Grid();
    Fill(grid, 6, 5);
    grid.EnableDragAndDrop();
    window.Show();
    wxUIActionSimulator input;
    wxPoint from;
    wxPoint to;
    if (row.column) {
      // Column 3's header dropped onto the left half of column 1's.
      const int y = grid.GetColLabelSize() / 2;
      const wxRect third = grid.CellToRect(0, grid.ViewColOfDataCol(3));
      const wxRect first = grid.CellToRect(0, grid.ViewColOfDataCol(1));
      from = grid.GetGridColLabelWindow()->ClientToScreen(wxPoint(third.x + third.width / 2, y));
      to = grid.GetGridColLabelWindow()->ClientToScreen(wxPoint(first.x + 5, y));
    } else {
      const int x = grid.GetRowLabelSize() / 2;
      const wxRect third = grid.CellToRect(grid.ViewRowOfDataRow(4), 0);
      const wxRect first = grid.CellToRect(grid.ViewRowOfDataRow(1), 0);
      from = grid.GetGridRowLabelWindow()->ClientToScreen(wxPoint(x, third.y + third.height / 2));
      to = grid.GetGridRowLabelWindow()->ClientToScreen(wxPoint(x, first.y + 3));
    }
    input.MouseMove(from);
    Settle(50);
    input.MouseDown();
    Settle(50);
    // A few pixels first: the grid takes the row or column under the pointer when the
    // drag starts.
    const wxPoint direction((to.x > from.x) - (to.x < from.x), (to.y > from.y) - (to.y < from.y));
    for (const int pixels : {2, 5}) {
      input.MouseMove(from + direction * pixels);
      Settle(40);
    }
    for (int step = 1; step <= 5; ++step) {
      input.MouseMove(from + (to - from) * step / 5);
      Settle(40);
    }
    input.MouseUp();
    Settle(150);
    if (row.column) {
      EXPECT_EQ(grid.GetColAt(0), grid.ViewColOfDataCol(3)) << "moved to the front";
      EXPECT_EQ(grid.GetColAt(1), grid.ViewColOfDataCol(1));
    } else {
      EXPECT_EQ(grid.GetRowAt(0), grid.ViewRowOfDataRow(4));
      EXPECT_EQ(grid.GetRowAt(1), grid.ViewRowOfDataRow(1));
    }
    EXPECT_EQ(grid.GetItemText(4, 3), "r4c3") << "data numbers stay the caller's";
  }
}

TEST(GridCtrl, ACellsTextDraggedOutDropsAsText) {
  CORLITH_REQUIRE_DISPLAY();
  GridWindow window;
  CGridCtrl& grid = window.Grid();
  Fill(grid, 4, 3);
  grid.SetItemText(2, 1, "GND_PLANE");
  grid.SetSize(wxSize(400, 300));
  grid.EnableDragAndDrop();
  // A drop target of the host's: a panel that keeps the text dropped on it.
  wxString dropped;
  auto* target = new wxPanel(&window.Frame(), wxID_ANY, wxPoint(420, 20), wxSize(200, 100));
  target->SetDropTarget(new TextCatcher(dropped));
  window.Show();
  const wxPoint from = window.CellCentre(2, 1);
  const wxPoint to = target->ClientToScreen(wxPoint(100, 50));
  // The drag runs a loop of its own once it starts, which in-process simulated input
  // cannot get past: a separate xdotool process moves the pointer meanwhile.
  std::string script = "xdotool mousemove " + std::to_string(from.x) + " " + std::to_string(from.y) +
                       " sleep 0.2 mousedown 1 sleep 0.2";
  for (int step = 1; step <= 8; ++step) {
    const wxPoint at = from + (to - from) * step / 8;
    script += " mousemove " + std::to_string(at.x) + " " + std::to_string(at.y) + " sleep 0.1";
  }
  for (const int dx : {5, 10, 5})  // lingering over the target lets the two sides agree on the drop
    script += " mousemove " + std::to_string(to.x + dx) + " " + std::to_string(to.y) + " sleep 0.15";
  script += " mouseup 1";
  std::FILE* mover = popen(script.c_str(), "r");
  ASSERT_NE(mover, nullptr);
  Settle(2500);
  EXPECT_EQ(pclose(mover), 0);
  Settle(200);
  EXPECT_EQ(dropped, "GND_PLANE");
  EXPECT_EQ(grid.GetItemText(2, 1), "GND_PLANE") << "copied, not moved";
}

TEST(GridCtrl, CursorKeysSkipHiddenRows) {
  CORLITH_REQUIRE_DISPLAY();
  GridWindow window;
  CGridCtrl& grid = window.Grid();
  Fill(grid, 10, 3);
  grid.SetRowHeight(3, 0);
  grid.SetRowHeights({-1, -1, -1, -1, 0, -1, 0, 0});  // with row 3: 3, 4, 6 and 7 hidden
  window.Show();
  struct Row {
    int key;
    int row;
  };
  ASSERT_TRUE(grid.SetFocusCell(2, 1));
  grid.SetFocus();
  Settle(100);
  for (const Row& row : {Row{WXK_DOWN, 5}, Row{WXK_DOWN, 8}, Row{WXK_DOWN, 9}, Row{WXK_UP, 8}, Row{WXK_UP, 5},
                         Row{WXK_UP, 2}}) {
    SCOPED_TRACE(row.row);
    wxUIActionSimulator input;
    input.Char(row.key);
    Settle(80);
    EXPECT_EQ(grid.GetFocusCell(), (CCellID{row.row, 1}));
  }
  EXPECT_EQ(grid.GetNumberRows(), 5) << "the table lists only the shown body rows";
  EXPECT_FALSE(grid.IsRowVisible(6));
  EXPECT_EQ(grid.GetRowHeight(6), 0);
  EXPECT_FALSE(grid.SetFocusCell(4, 1)) << "a hidden row takes no cursor";
  // Showing them again: every row back, at the height given.
  grid.SetRowHeights(std::vector<int>(10, 30));
  EXPECT_EQ(grid.GetNumberRows(), 9);
  EXPECT_EQ(grid.GetRowHeight(6), 30);
  EXPECT_EQ(grid.GetRowSize(grid.ViewRowOfDataRow(6)), 30);
  EXPECT_EQ(grid.GetRowHeight(0), 30) << "row 0 is the header: its height is the header's";
}

TEST(GridCtrl, PrintsPagesWithTheHeaderRepeatedAndNumberedFooters) {
  CORLITH_REQUIRE_DISPLAY();
  GridWindow window;
  CGridCtrl& grid = window.Grid();
  Fill(grid, 6, 3);
  grid.SetItemText(0, 1, "Clearance");
  grid.SetItemText(0, 2, "Width");
  // Five body rows two to a page (an A4 page holds two such rows and not three).
  grid.SetRowHeights({-1, 420, 420, 420, 420, 420});
  window.Show();
  corlith::test::TempFolder folder("grid");
  const std::string ps = folder.PathOf("grid.ps");
  ASSERT_EQ(grid.Print(ps.c_str()), 3);
  if (const char* keep = std::getenv("GRID_KEEP_PS"))
    std::filesystem::copy_file(ps, keep, std::filesystem::copy_options::overwrite_existing);
  const std::string pdf = folder.PathOf("grid.pdf");
  ASSERT_EQ(std::system(("ps2pdf '" + ps + "' '" + pdf + "'").c_str()), 0);
  const std::vector<std::vector<const char*>> bodies{{"r1c1", "r2c1"}, {"r3c1", "r4c1"}, {"r5c1"}};
  for (int page = 1; page <= 3; ++page) {
    SCOPED_TRACE(page);
    const std::string text = RunCommand("pdftotext -f " + std::to_string(page) + " -l " +
                                        std::to_string(page) + " '" + pdf + "' -");
    EXPECT_NE(text.find("Page " + std::to_string(page) + " of 3"), std::string::npos) << text;
    EXPECT_NE(text.find("Clearance"), std::string::npos) << text;
    EXPECT_NE(text.find("Width"), std::string::npos) << text;
    for (const char* body : bodies[static_cast<std::size_t>(page - 1)])
      EXPECT_NE(text.find(body), std::string::npos) << body << "\n" << text;
  }
  EXPECT_EQ(RunCommand("pdfinfo '" + pdf + "' | grep -c '^Pages: *3$'"), "1\n");
}

TEST(GridCtrl, VerticalHeaderIsAsTallAsItsLongestText) {
  CORLITH_REQUIRE_DISPLAY();
  GridWindow window;
  CGridCtrl& grid = window.Grid();
  Fill(grid, 8, 12);
  const CString longest = "Clearance between copper and board edge";
  grid.SetItemText(0, 5, longest);
  grid.SetItemText(0, 6, "Hole to hole");
  for (int col = 1; col < 12; ++col) grid.SetColumnWidth(col, 24);
  grid.SetVerticalHeaderText(true);
  window.Show();
  int width = 0;
  int height = 0;
  const wxFont font = grid.GetLabelFont();
  grid.GetTextExtent(wxString::FromUTF8(longest.GetString()), &width, &height, nullptr, nullptr, &font);
  EXPECT_GT(grid.GetColLabelSize(), width);
  EXPECT_LT(grid.GetColLabelSize(), width + 30);
  EXPECT_EQ(grid.GetRowHeight(0), grid.GetColLabelSize());
  corlith::test::TempFolder folder("gridshot");
  EXPECT_TRUE(corlith::test::SaveWindowPng(window.Frame(),
                                           corlith::test::ShotPath(folder, "grid-vertical-header.png")));
}

TEST(GridCtrl, AnOpenEditorIsClosedIntoItsDataBeforeTheDataOrGridGoes) {
  CORLITH_REQUIRE_DISPLAY();
  struct Row {
    const char* name;
    bool destroyGrid;
  };
  for (const Row& row : {Row{"data replaced", false}, Row{"grid destroyed", true}}) {
    SCOPED_TRACE(row.name);
    CGridCellStore data;
    data.SetRowCount(3);
    data.SetColumnCount(3);
    data.SetItemEditable(1, 1, true);
    auto window = std::make_unique<GridWindow<>>();
    CGridCtrl& grid = window->Grid();
    grid.SetFixedRowCount(1);
    grid.SetFixedColumnCount(1);
    grid.SetData(&data);
    window->Show();
    ASSERT_TRUE(grid.SetFocusCell(1, 1));
    grid.EnableCellEditControl();
    Settle(50);
    ASSERT_TRUE(grid.IsCellEditControlShown());
    wxUIActionSimulator input;
    input.Text("kept");
    Settle(100);
    if (row.destroyGrid) {
      window.reset();
    } else {
      grid.SetData(nullptr);
      EXPECT_FALSE(grid.IsCellEditControlEnabled());
      EXPECT_EQ(grid.GetItemText(1, 1), "") << "the own store is shown now";
    }
    EXPECT_EQ(data.GetItemText(1, 1), "kept");
  }
}

TEST(GridCtrl, CheckGridTogglesEditableCheckCellsOnOneClick) {
  CORLITH_REQUIRE_DISPLAY();
  struct Row {
    const char* name;
    GridCellKind kind;
    bool editable;
    const char* after;
    int changes;
  };
  for (const Row& row : {Row{"editable check", GridCellKind::Check, true, "1", 1},
                         Row{"read-only check", GridCellKind::Check, false, "0", 0},
                         Row{"text", GridCellKind::Text, true, "0", 0}}) {
    SCOPED_TRACE(row.name);
    GridWindow<CCheckGridCtrl> window;
    CGridCtrl& grid = window.Grid();
    Fill(grid, 4, 4);
    grid.GetCellStore().SetItemKind(2, 3, row.kind);
    grid.GetCellStore().SetItemEditable(2, 3, row.editable);
    grid.SetItemText(2, 3, "0");
    int changes = 0;
    grid.Bind(wxEVT_GRID_CELL_CHANGED, [&](wxGridEvent&) { ++changes; });
    window.Show();
    wxUIActionSimulator input;
    input.MouseMove(window.CellCentre(2, 3));
    Settle(50);
    input.MouseClick();
    Settle(150);
    EXPECT_EQ(grid.GetItemText(2, 3), row.after);
    EXPECT_EQ(changes, row.changes);
    EXPECT_FALSE(grid.IsCellEditControlShown());
  }
}

TEST(GridCtrl, ListGridSelectsRowsAndReportsDoubleClicksWithDataNumbers) {
  CORLITH_REQUIRE_DISPLAY();
  GridWindow<CListGridCtrl> window;
  CListGridCtrl& grid = window.Grid();
  Fill(grid, 6, 4);
  grid.SetRowHeight(2, 0);  // data row 4 is the third shown row
  std::vector<std::pair<int, long>> reported;
  window.Frame().Bind(EVT_CORLITH_GRID_ROW_DCLICK, [&](wxCommandEvent& event) {
    EXPECT_EQ(event.GetId(), static_cast<int>(kGridId));
    reported.emplace_back(event.GetInt(), event.GetExtraLong());
  });
  window.Show();
  wxUIActionSimulator input;
  input.MouseMove(window.CellCentre(4, 2));
  Settle(50);
  input.MouseClick();
  Settle(150);
  EXPECT_EQ(grid.GetSelectedRow(), 4);
  EXPECT_TRUE(grid.IsInSelection(grid.ViewRowOfDataRow(4), 0)) << "the whole row is selected";
  EXPECT_TRUE(grid.IsInSelection(grid.ViewRowOfDataRow(4), 2));
  input.MouseDblClick();
  Settle(150);
  ASSERT_EQ(reported.size(), 1U);
  EXPECT_EQ(reported[0], (std::pair<int, long>{4, 2}));
  EXPECT_FALSE(grid.IsCellEditControlShown());
}

TEST(GridCellStore, ResizingKeepsTheCellsThatRemainAndRefusesOutsideCells) {
  CGridCellStore store;
  ASSERT_TRUE(store.SetRowCount(3));
  ASSERT_TRUE(store.SetColumnCount(3));
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) store.SetItemText(r, c, CString(std::to_string(r * 10 + c)));
  store.SetItemKind(1, 1, GridCellKind::Check);
  ASSERT_TRUE(store.SetColumnCount(2));
  ASSERT_TRUE(store.SetColumnCount(4));
  ASSERT_TRUE(store.SetRowCount(4));
  struct Row {
    int row;
    int col;
    const char* text;
  };
  for (const Row& row :
       {Row{0, 0, "0"}, Row{1, 1, "11"}, Row{2, 1, "21"}, Row{2, 2, ""}, Row{3, 3, ""}, Row{1, 3, ""}}) {
    SCOPED_TRACE(std::to_string(row.row) + "," + std::to_string(row.col));
    EXPECT_EQ(store.GetItemText(row.row, row.col), row.text);
  }
  EXPECT_EQ(store.GetItemKind(1, 1), GridCellKind::Check) << "kind moved with the cell";
  for (const Row& row : {Row{-1, 0, ""}, Row{0, 4, ""}, Row{4, 0, ""}}) {
    SCOPED_TRACE(std::to_string(row.row) + "," + std::to_string(row.col));
    EXPECT_FALSE(store.SetItemText(row.row, row.col, "x"));
    EXPECT_FALSE(store.SetItemEditable(row.row, row.col, true));
    EXPECT_EQ(store.GetItemText(row.row, row.col), "");
  }
  EXPECT_FALSE(store.SetRowCount(-1));
  EXPECT_EQ(store.GetRowCount(), 4);
}

}  // namespace
