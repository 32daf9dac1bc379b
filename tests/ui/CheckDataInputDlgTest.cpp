// The check-data-input dialog against a real host window that answers its requests:
// tabs, usage grids, group lists, search and Reset, the lazy component grid, Enter, the
// tall-dialog rule, and the workbook export read back with openpyxl.
#include <corlith/framework/HostPrompt.h>
#include <corlith/platform/Process.h>
#include <corlith/test/TempFolder.h>
#include <corlith/ui/CheckDataExport.h>
#include <corlith/ui/CheckDataInputDlg.h>
#include <corlith/ui/grid/GridCtrl.h>

#include <wx/app.h>
#include <wx/frame.h>
#include <wx/image.h>
#include <wx/listctrl.h>
#include <wx/textctrl.h>
#include <wx/uiaction.h>
#include <wx/utils.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "UiTestEnvironment.h"

namespace {

using Dlg = CCheck_Data_Input_Setting_Dlg;

const std::vector<std::string>& Items() {
  static const std::vector<std::string> items = {"Short", "A much longer check item", "Mid item"};
  return items;
}
const std::vector<std::string>& Nets() {
  static const std::vector<std::string> nets = {"Net1", "GND", "net22", "VCC_NET", "CLK"};
  return nets;
}
const std::vector<std::string>& Comps() {
  static const std::vector<std::string> comps = {"R1", "C7", "U3"};
  return comps;
}

CStringArray Strings(const std::vector<std::string>& texts) {
  CStringArray out;
  for (const std::string& text : texts) out.Add(CString(text));
  return out;
}

// Flag 1 where (row + col) is odd; the last row is one flag short.
CUsageFlagTable Flags(std::size_t rows, std::size_t cols) {
  CUsageFlagTable table;
  for (std::size_t r = 0; r < rows; ++r) {
    CUsageFlagArray line;
    const std::size_t count = r + 1 == rows ? cols - 1 : cols;
    for (std::size_t c = 0; c < count; ++c) line.Add((r + c) % 2 == 1 ? 1 : 2 * static_cast<int>(c % 2));
    table.Add(line);
  }
  return table;
}

void AddRow(CStringArrayArray& table, const std::vector<std::string>& cells) {
  auto row = std::make_unique<CStringArray>();
  for (const std::string& cell : cells) row->Add(CString(cell));
  table.Add(row.release());
}

/// A host frame: the dialog's parent. It records every request with the size of the
/// table it concerns at that moment, and fills what is asked.
class Host : public wxFrame {
 public:
  struct Seen {
    int number;
    wxWindow* receiver;
    INT_PTR tableRows;  // rows of the asked table before filling (503: usage rows)
    bool dialogMatches;
  };

  explicit Host(std::vector<Seen>& log) : wxFrame(nullptr, wxID_ANY, "host"), m_log(log) {
    Bind(corlith::ui::EVT_CORLITH_REQUEST, &Host::OnRequest, this);
  }
  Dlg* dialog = nullptr;

 private:
  void OnRequest(wxCommandEvent& event) {
    auto* asking = static_cast<Dlg*>(event.GetClientData());
    Seen seen{event.GetInt(), this, -1,
              asking == dialog && event.GetEventObject() == dialog && event.GetId() == event.GetInt()};
    if (event.GetInt() == corlith::ui::kRequestNetGroups) {
      seen.tableRows = asking->m_pNetGroupTable->GetSize();
      AddRow(*asking->m_pNetGroupTable, {"POWER", "VCC, VDD"});
      AddRow(*asking->m_pNetGroupTable, {"CLOCKS", "CLK, XTAL"});
    } else if (event.GetInt() == corlith::ui::kRequestComponentGroups) {
      seen.tableRows = asking->m_pCompGroupTable->GetSize();
      AddRow(*asking->m_pCompGroupTable, {"PASSIVE", "R1, C7"});
    } else if (event.GetInt() == corlith::ui::kRequestComponentUsage) {
      seen.tableRows = asking->m_arrCompUsageRowNames.GetSize();
      asking->m_arrCompUsageRowNames.Copy(Strings(Comps()));
      asking->m_arrCompUsageFlags = Flags(Comps().size(), Items().size());
    }
    m_log.push_back(seen);
  }
  std::vector<Seen>& m_log;
};

/// The export target: records request 600.
class Target : public wxFrame {
 public:
  explicit Target(std::vector<Host::Seen>& log) : wxFrame(nullptr, wxID_ANY, "target"), m_log(log) {
    Bind(corlith::ui::EVT_CORLITH_REQUEST, [this](wxCommandEvent& event) {
      m_log.push_back({event.GetInt(), this, 0, event.GetEventObject() != nullptr});
    });
  }

 private:
  std::vector<Host::Seen>& m_log;
};

/// A host, a target and a dialog filled with the net usage data.
struct Fixture {
  std::vector<Host::Seen> log;
  Host* host = new Host(log);
  Target* target = new Target(log);
  CWnd hostWnd{host};
  CWnd targetWnd{target};
  std::unique_ptr<Dlg> dialog;

  explicit Fixture(bool withItems = true) : dialog(std::make_unique<Dlg>(&hostWnd)) {
    host->dialog = dialog.get();
    dialog->m_pExportTarget = &targetWnd;
    dialog->m_strTitle = "Check Data";
    dialog->m_arrNetUsageRowNames.Copy(Strings(Nets()));
    if (withItems) dialog->m_arrCheckItemNames.Copy(Strings(Items()));
    dialog->m_arrNetUsageFlags = Flags(Nets().size(), withItems ? Items().size() : 1);
  }
  ~Fixture() {
    dialog.reset();
    host->Destroy();
    target->Destroy();
    corlith::test::Pump(10);
  }
  Fixture(const Fixture&) = delete;
  Fixture& operator=(const Fixture&) = delete;

  void Open() {
    ASSERT_TRUE(dialog->Create());
    dialog->Show();
    corlith::test::Pump(50);
  }
  void SwitchTo(int tab) {
    dialog->GetTabCtrl()->SetSelection(static_cast<std::size_t>(tab));
    corlith::test::Pump(10);
  }
  void Search(const char* text) {
    dialog->SetDlgItemText(7024, text);
    dialog->OnApply();
  }
  std::vector<int> Heights(CGridCtrl& grid) const {
    std::vector<int> heights;
    for (int r = 1; r < grid.GetRowCount(); ++r) heights.push_back(grid.GetRowHeight(r));
    return heights;
  }
  std::vector<int> Numbers() const {
    std::vector<int> numbers;
    for (const Host::Seen& seen : log) numbers.push_back(seen.number);
    return numbers;
  }
};

// Delivers events with every window enabled (Pump's safe yield disables them, and a
// disabled window drops simulated keys).
void Deliver(int milliseconds) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
  while (std::chrono::steady_clock::now() < end) {
    wxTheApp->Yield(true);
    wxMilliSleep(5);
  }
}

std::vector<std::string> Column(const wxListCtrl& list, int col) {
  std::vector<std::string> out;
  for (long i = 0; i < list.GetItemCount(); ++i) out.emplace_back(list.GetItemText(i, col).utf8_str().data());
  return out;
}

TEST(CheckDataInputDlg, TabsTitleAndTheNetUsageGridAsLaidOut) {
  CORLITH_REQUIRE_DISPLAY();
  Fixture f;
  f.Open();
  Dlg& dlg = *f.dialog;
  EXPECT_EQ(dlg.GetTitle(), "Check Data");
  auto* tabs = dlg.GetTabCtrl();
  ASSERT_EQ(tabs->GetItemCount(), 4);
  const char* expected[] = {"Net Usage", "Componet Usage", "Component Group", "Net Group"};
  for (int i = 0; i < 4; ++i) EXPECT_EQ(tabs->GetItemText(i), expected[i]) << i;
  EXPECT_EQ(tabs->GetCurSel(), 0);
  EXPECT_TRUE(dlg.m_bInitialized);
  EXPECT_TRUE(f.log.empty()) << "opening asks for nothing";

  CGridCtrl& grid = *dlg.GetNetUsageGrid();
  EXPECT_TRUE(grid.IsShown());
  EXPECT_FALSE(dlg.GetCompUsageGrid()->IsShown());
  EXPECT_FALSE(dlg.GetNetGroupList()->IsShown());
  ASSERT_EQ(grid.GetRowCount(), 6);
  ASSERT_EQ(grid.GetColumnCount(), 4);
  EXPECT_EQ(grid.GetItemText(0, 0), "");
  const CUsageFlagTable flags = Flags(Nets().size(), Items().size());
  for (int r = 1; r < 6; ++r) {
    EXPECT_EQ(grid.GetItemText(r, 0), Nets()[static_cast<std::size_t>(r - 1)].c_str());
    for (int c = 1; c < 4; ++c) {
      SCOPED_TRACE(testing::Message() << "cell " << r << "," << c);
      const CUsageFlagArray& line = flags[r - 1];
      const bool set = c - 1 < line.GetSize() && line[c - 1] == 1;
      EXPECT_EQ(grid.GetItemText(r, c), set ? "O" : "");
    }
  }
  // The header is as tall as the widest name; each item column 1.5 x its name's height.
  const wxFont font = grid.GetLabelFont();
  int widest = 0;
  for (std::size_t c = 0; c < Items().size(); ++c) {
    int w = 0;
    int h = 0;
    grid.GetTextExtent(Items()[c], &w, &h, nullptr, nullptr, &font);
    widest = std::max(widest, w);
    EXPECT_EQ(grid.GetColumnWidth(static_cast<int>(c) + 1), h * 3 / 2) << Items()[c];
  }
  EXPECT_EQ(grid.GetRowHeight(0), widest);
  EXPECT_GT(widest, grid.GetColumnWidth(1) * 3) << "the longest name stands, it does not lie";
  EXPECT_TRUE(grid.IsVerticalHeaderText());
  EXPECT_EQ(f.Heights(grid), std::vector<int>(5, Dlg::kShownRowHeight));
}

TEST(CheckDataInputDlg, EachRequestOnlyWhileItsTableHoldsJustTheHeader) {
  CORLITH_REQUIRE_DISPLAY();
  struct Case {
    const char* name;
    std::vector<int> tabs;  // opened in this order, then "Export to Excel"
    std::vector<int> expected;
  };
  const std::vector<Case> cases = {
      {"export alone asks for all three, 600 last", {}, {503, 501, 502, 600}},
      {"net group tab twice", {3, 0, 3}, {501, 503, 502, 600}},
      {"every tab first", {1, 2, 3, 2, 1}, {503, 502, 501, 600}},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    Fixture f;
    f.Open();
    for (int tab : row.tabs) f.SwitchTo(tab);
    f.dialog->OnExport();
    f.dialog->OnExport();  // everything is filled now: only 600 again
    std::vector<int> expected = row.expected;
    expected.push_back(600);
    EXPECT_EQ(f.Numbers(), expected);
    for (const Host::Seen& seen : f.log) {
      SCOPED_TRACE(seen.number);
      EXPECT_TRUE(seen.dialogMatches);
      EXPECT_EQ(seen.receiver, seen.number == 600 ? static_cast<wxWindow*>(f.target) : f.host);
      // The group tables held just their header; the usage rows were empty.
      if (seen.number != 600) {
        EXPECT_EQ(seen.tableRows, seen.number == 503 ? 0 : 1);
      }
    }
  }
}

TEST(CheckDataInputDlg, TheComponentGridIsBuiltFromWhatTheParentFilledOnRequest) {
  CORLITH_REQUIRE_DISPLAY();
  Fixture f;
  f.Open();
  EXPECT_EQ(f.dialog->GetCompUsageGrid()->GetRowCount(), 0) << "nothing is built before the tab opens";
  f.SwitchTo(Dlg::kTabComponentUsage);
  EXPECT_EQ(f.dialog->m_nCurTab, Dlg::kTabComponentUsage);
  CGridCtrl& grid = *f.dialog->GetCompUsageGrid();
  EXPECT_TRUE(grid.IsShown());
  EXPECT_FALSE(f.dialog->GetNetUsageGrid()->IsShown());
  ASSERT_EQ(grid.GetRowCount(), 4);
  ASSERT_EQ(grid.GetColumnCount(), 4);
  EXPECT_EQ(grid.GetItemText(3, 0), "U3");
  EXPECT_EQ(grid.GetItemText(0, 2), "A much longer check item");
  EXPECT_EQ(grid.GetItemText(1, 2), "O");
  EXPECT_EQ(grid.GetItemText(1, 1), "");
}

TEST(CheckDataInputDlg, AHostThatPrefillsComponentRowsGetsAnEmptyGrid) {
  CORLITH_REQUIRE_DISPLAY();
  Fixture f;
  f.dialog->m_arrCompUsageRowNames.Copy(Strings(Comps()));
  f.dialog->m_arrCompUsageFlags = Flags(Comps().size(), Items().size());
  f.Open();
  f.SwitchTo(Dlg::kTabComponentUsage);
  f.dialog->OnExport();
  EXPECT_EQ(f.Numbers(), (std::vector<int>{501, 502, 600})) << "no 503";
  EXPECT_EQ(f.dialog->GetCompUsageGrid()->GetRowCount(), 0);
  EXPECT_TRUE(f.dialog->GetCompUsageGrid()->IsShown());
}

TEST(CheckDataInputDlg, NoCheckItemsGiveOneColumnAndNoMeasuring) {
  CORLITH_REQUIRE_DISPLAY();
  Fixture plain(false);
  plain.Open();
  Fixture measured;
  measured.Open();
  CGridCtrl& grid = *plain.dialog->GetNetUsageGrid();
  EXPECT_EQ(grid.GetColumnCount(), 1);
  EXPECT_EQ(grid.GetRowCount(), 6);
  EXPECT_EQ(grid.GetItemText(2, 0), "GND");
  EXPECT_LT(grid.GetRowHeight(0), measured.dialog->GetNetUsageGrid()->GetRowHeight(0));
}

TEST(CheckDataInputDlg, SearchAndResetSetUsageRowHeights) {
  CORLITH_REQUIRE_DISPLAY();
  Fixture f;
  f.Open();
  CGridCtrl& grid = *f.dialog->GetNetUsageGrid();
  const int header = grid.GetRowHeight(0);
  struct Case {
    const char* search;
    std::vector<int> heights;  // Net1 GND net22 VCC_NET CLK
  };
  const std::vector<Case> cases = {
      {"net", {21, 0, 21, 21, 0}},  // upper-cased containment
      {"NET2", {0, 0, 21, 0, 0}},
      {"c_n", {0, 0, 0, 21, 0}},
      {"zzz", {0, 0, 0, 0, 0}},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.search);
    f.Search(row.search);
    EXPECT_EQ(f.Heights(grid), row.heights);
    EXPECT_EQ(grid.GetRowHeight(0), header) << "the header row is never searched";
    EXPECT_EQ(f.dialog->m_strSearch, row.search);
    f.dialog->OnReset();
    EXPECT_EQ(f.Heights(grid), std::vector<int>(5, 21));
    EXPECT_EQ(f.dialog->m_strSearch, "");
    EXPECT_EQ(f.dialog->GetDlgItemText(7024), "");
  }
  // An empty search changes nothing, and neither does Reset with an empty field.
  f.Search("gnd");
  f.Search("");
  EXPECT_EQ(f.Heights(grid), (std::vector<int>{0, 21, 0, 0, 0}));
  f.dialog->OnReset();
  EXPECT_EQ(f.Heights(grid), (std::vector<int>{0, 21, 0, 0, 0}));
  // A tab change resets the search on the tab left.
  f.Search("gnd");
  f.SwitchTo(Dlg::kTabNetGroup);
  EXPECT_EQ(f.Heights(grid), std::vector<int>(5, 21));
  EXPECT_EQ(f.dialog->GetDlgItemText(7024), "");
}

TEST(CheckDataInputDlg, GroupListsStopAtAShortRowAndSearchOnlyTheMemberList) {
  CORLITH_REQUIRE_DISPLAY();
  Fixture f;
  CStringArrayArray& nets = *f.dialog->m_pNetGroupTable;
  AddRow(nets, {"POWER", "VCC, VDD"});
  AddRow(nets, {"NETLIKE", "CLK, XTAL"});
  AddRow(nets, {"BUS", "D0, D1, net7"});
  AddRow(nets, {"SHORT"});
  AddRow(nets, {"AFTER", "never shown"});
  f.Open();
  f.SwitchTo(Dlg::kTabNetGroup);
  EXPECT_TRUE(f.log.empty()) << "a filled table is not requested";
  wxListCtrl& list = *f.dialog->GetNetGroupList();
  EXPECT_TRUE(list.IsShown());
  ASSERT_EQ(list.GetColumnCount(), 2);
  wxListItem column;
  column.SetMask(wxLIST_MASK_TEXT | wxLIST_MASK_WIDTH | wxLIST_MASK_FORMAT);
  const struct {
    int col;
    const char* text;
    int width;
  } columns[] = {{0, "Net Group", 200}, {1, "Net List", 510}};
  for (const auto& expected : columns) {
    SCOPED_TRACE(expected.text);
    ASSERT_TRUE(list.GetColumn(expected.col, column));
    EXPECT_EQ(column.GetText(), expected.text);
    EXPECT_EQ(column.GetWidth(), expected.width);
    EXPECT_EQ(column.GetAlign(), wxLIST_FORMAT_LEFT);
  }
  EXPECT_EQ(Column(list, 0), (std::vector<std::string>{"POWER", "NETLIKE", "BUS"}));
  EXPECT_EQ(Column(list, 1), (std::vector<std::string>{"VCC, VDD", "CLK, XTAL", "D0, D1, net7"}));
  f.Search("net");  // "NETLIKE" is a group name: not searched
  EXPECT_EQ(Column(list, 0), (std::vector<std::string>{"BUS"}));
  f.dialog->OnReset();
  EXPECT_EQ(Column(list, 0), (std::vector<std::string>{"POWER", "NETLIKE", "BUS"}));
  // The component group tab has its own list, filled on request.
  f.SwitchTo(Dlg::kTabComponentGroup);
  EXPECT_EQ(f.Numbers(), std::vector<int>{502});
  EXPECT_EQ(Column(*f.dialog->GetCompGroupList(), 1), std::vector<std::string>{"R1, C7"});
}

TEST(CheckDataInputDlg, EnterIsSwallowedEscapeStillCloses) {
  CORLITH_REQUIRE_DISPLAY();
  Fixture f;
  ASSERT_TRUE(f.dialog->Create());
  f.dialog->Move(0, 0);  // without a window manager it sits there anyway
  f.dialog->Show();
  Deliver(100);
  auto* edit = dynamic_cast<wxTextCtrl*>(f.dialog->GetDlgItem(7024));
  ASSERT_NE(edit, nullptr);
  // X gives the keys to the window under the pointer: click into the field.
  wxUIActionSimulator input;
  const wxRect field = edit->GetScreenRect();
  input.MouseMove(field.GetLeft() + 20, field.GetTop() + field.GetHeight() / 2);
  input.MouseClick();
  Deliver(100);
  input.Text("gnd");
  input.Char(WXK_RETURN);
  Deliver(200);
  EXPECT_EQ(edit->GetValue(), "gnd") << "the keys reached the field";
  EXPECT_TRUE(f.dialog->IsShown()) << "Enter did not close the dialog";
  // A focused button takes Enter as a press; here it never sees it. Space still presses.
  f.dialog->GetDlgItem(7025)->SetFocus();
  Deliver(100);
  input.Char(WXK_RETURN);
  Deliver(200);
  EXPECT_TRUE(f.dialog->IsShown());
  EXPECT_EQ(f.Heights(*f.dialog->GetNetUsageGrid()), std::vector<int>(5, 21)) << "Enter pressed Apply";
  input.Char(' ');
  Deliver(200);
  EXPECT_EQ(f.Heights(*f.dialog->GetNetUsageGrid()), (std::vector<int>{0, 21, 0, 0, 0}))
      << "space presses Apply";
  input.Char(WXK_ESCAPE);
  Deliver(200);
  EXPECT_FALSE(f.dialog->IsShown()) << "Escape takes the default route";
  EXPECT_EQ(f.dialog->GetReturnCode(), IDCANCEL);
}

TEST(CheckDataInputDlg, ScreenshotOfAFilledDialogWithASearchApplied) {
  CORLITH_REQUIRE_DISPLAY();
  Fixture f;
  Dlg& dlg = *f.dialog;
  dlg.m_strTitle = "Check Data Input Setting";
  dlg.m_arrCheckItemNames.Copy(Strings({"Clearance", "Trace Width", "Via Count", "Differential Pair Skew",
                                        "Length Matching", "Return Path", "Stub Length", "Crosstalk"}));
  dlg.m_arrNetUsageRowNames.RemoveAll();
  dlg.m_arrNetUsageFlags.RemoveAll();
  for (int r = 0; r < 40; ++r) {
    dlg.m_arrNetUsageRowNames.Add(
        CString(r % 3 == 0 ? "GND_" + std::to_string(r) : "NET_DATA" + std::to_string(r)));
    CUsageFlagArray line;
    for (int c = 0; c < 8; ++c) line.Add((r * 7 + c * 3) % 4 == 0 ? 1 : 0);
    dlg.m_arrNetUsageFlags.Add(line);
  }
  ASSERT_TRUE(dlg.Create());
  dlg.Move(0, 0);
  dlg.Show();
  Deliver(300);
  f.Search("data1");
  EXPECT_EQ(dlg.GetNetUsageGrid()->GetRowHeight(1), 0);
  EXPECT_EQ(dlg.GetNetUsageGrid()->GetRowHeight(11), 21);
  Deliver(200);
  corlith::test::TempFolder shots("checkdlg-shots");
  const std::filesystem::path shot = corlith::test::ShotPath(shots, "check-data-input.png");
  ASSERT_TRUE(corlith::test::SaveWindowPng(dlg, shot));
  const wxImage image(shot.string(), wxBITMAP_TYPE_PNG);
  EXPECT_EQ(image.GetSize(), dlg.GetClientSize());
  f.SwitchTo(Dlg::kTabNetGroup);
  Deliver(200);
  EXPECT_EQ(dlg.GetNetGroupList()->GetItemCount(), 2);
  EXPECT_TRUE(
      corlith::test::SaveWindowPng(dlg, corlith::test::ShotPath(shots, "check-data-input-net-group.png")));
}

// The workbook as openpyxl reads it: "sheet" -> "row,col" (1-based) -> text, and the
// sheets' order.
struct Workbook {
  std::vector<std::string> sheets;
  std::map<std::string, std::map<std::string, std::string>> cells;
};

Workbook ReadBack(const std::filesystem::path& file) {
  // The system's Python, where the Debian package puts openpyxl.
  const char* python = std::filesystem::exists("/usr/bin/python3") ? "/usr/bin/python3" : "python3";
  corlith::platform::SpawnOptions options;
  options.program = python;
  options.arguments = {"-c",
                       "import sys, openpyxl\n"
                       "wb = openpyxl.load_workbook(sys.argv[1])\n"
                       "for ws in wb.worksheets:\n"
                       "    print('#' + ws.title)\n"
                       "    for row in ws.iter_rows():\n"
                       "        for c in row:\n"
                       "            if c.value is not None: print('%d,%d=%s' % (c.row, c.column, c.value))\n",
                       file.string()};
  options.output = corlith::platform::StreamTarget::Pipe();
  options.error = corlith::platform::StreamTarget::Pipe();
  const corlith::platform::RunResult run = corlith::platform::RunHidden(options, std::chrono::seconds(30));
  EXPECT_EQ(run.error, 0);
  EXPECT_TRUE(run.status.Succeeded()) << "openpyxl (python3-openpyxl) read failed: " << run.errorOutput;
  Workbook book;
  std::istringstream lines(run.output);
  std::string line;
  while (std::getline(lines, line)) {
    if (line.starts_with('#')) {
      book.sheets.push_back(line.substr(1));
    } else if (!book.sheets.empty()) {
      const std::size_t eq = line.find('=');
      book.cells[book.sheets.back()][line.substr(0, eq)] = line.substr(eq + 1);
    }
  }
  return book;
}

std::string Cell(std::size_t row, std::size_t col) { return std::to_string(row) + "," + std::to_string(col); }

TEST(CheckDataExport, TheWorkbookHasFourSheetsTheHeadersAndEveryFlag) {
  CORLITH_REQUIRE_DISPLAY();
  corlith::test::TempFolder folder("checkdlg-xlsx");
  Fixture f;
  corlith::ui::CheckDataExporter exporter(*f.target);
  const std::filesystem::path file = folder.Path() / "check.xlsx";
  exporter.SetPath(file);
  f.Open();
  f.dialog->OnExport();
  // The exporter takes 600 before the target's own handler (bound earlier) would.
  EXPECT_EQ(f.Numbers(), (std::vector<int>{503, 501, 502}));
  EXPECT_EQ(exporter.GetRequestCount(), 1);
  EXPECT_EQ(exporter.GetLastError(), "");
  EXPECT_EQ(exporter.GetLastWritten(), file);
  ASSERT_TRUE(std::filesystem::exists(file));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), 1) << "no temporary left";

  const Workbook book = ReadBack(file);
  EXPECT_EQ(book.sheets,
            (std::vector<std::string>{"Net Usage", "Componet Usage", "Component Group", "Net Group"}));
  struct Usage {
    const char* sheet;
    const std::vector<std::string>& rows;
  };
  for (const Usage& usage : {Usage{"Net Usage", Nets()}, Usage{"Componet Usage", Comps()}}) {
    SCOPED_TRACE(usage.sheet);
    const auto found = book.cells.find(usage.sheet);
    ASSERT_NE(found, book.cells.end());
    std::map<std::string, std::string> expected;
    for (std::size_t c = 0; c < Items().size(); ++c) expected[Cell(1, c + 2)] = Items()[c];
    const CUsageFlagTable flags = Flags(usage.rows.size(), Items().size());
    for (std::size_t r = 0; r < usage.rows.size(); ++r) {
      expected[Cell(r + 2, 1)] = usage.rows[r];
      const CUsageFlagArray& line = flags[static_cast<INT_PTR>(r)];
      for (INT_PTR c = 0; c < line.GetSize(); ++c) {
        if (line[c] == 1) expected[Cell(r + 2, static_cast<std::size_t>(c) + 2)] = "O";
      }
    }
    EXPECT_EQ(found->second, expected) << "cell A1 empty, flags 2 and 0 empty";
  }
  EXPECT_EQ(
      book.cells.at("Component Group"),
      (std::map<std::string, std::string>{
          {"1,1", "Component Group"}, {"1,2", "Component List"}, {"2,1", "PASSIVE"}, {"2,2", "R1, C7"}}));
  EXPECT_EQ(book.cells.at("Net Group"), (std::map<std::string, std::string>{{"1,1", "Net Group"},
                                                                            {"1,2", "Net List"},
                                                                            {"2,1", "POWER"},
                                                                            {"2,2", "VCC, VDD"},
                                                                            {"3,1", "CLOCKS"},
                                                                            {"3,2", "CLK, XTAL"}}));
}

TEST(CheckDataExport, ThePathComesFromTheChooserOrNothingIsWritten) {
  CORLITH_REQUIRE_DISPLAY();
  corlith::test::TempFolder folder("checkdlg-chooser");
  const std::string chosen = (folder.Path() / "chosen.xlsx").string();
  const std::string unwritable = (folder.Path() / "missing-folder" / "x.xlsx").string();
  struct Case {
    const char* name;
    std::optional<std::vector<std::string>> answer;
    std::string written;
    bool failed;
  };
  const std::vector<Case> cases = {
      {"chosen", std::vector<std::string>{chosen}, chosen, false},
      {"cancelled", std::nullopt, "", false},
      {"a folder that does not exist", std::vector<std::string>{unwritable}, "", true},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    auto prompt = std::make_shared<corlith::RecordingHostPrompt>();
    prompt->QueueFiles(row.answer);
    corlith::ScopedHostPrompt scoped(prompt);
    Fixture f;
    corlith::ui::CheckDataExporter exporter(*f.target);
    f.Open();
    f.dialog->OnExport();
    ASSERT_EQ(prompt->FileRequests().size(), 1U);
    const corlith::FileChooserRequest asked = prompt->FileRequests().front();
    EXPECT_FALSE(asked.open);
    EXPECT_EQ(asked.defaultExtension, "xlsx");
    EXPECT_EQ(asked.fileName, "Check_Data_Input.xlsx");
    EXPECT_EQ(exporter.GetLastWritten().string(), row.written);
    EXPECT_EQ(!exporter.GetLastError().empty(), row.failed);
    EXPECT_EQ(prompt->Messages().size(), row.failed ? 1U : 0U);
    if (!row.written.empty()) {
      EXPECT_EQ(ReadBack(row.written).sheets.size(), 4U);
    }
  }
  EXPECT_FALSE(std::filesystem::exists(unwritable));
}

TEST(CheckDataExport, AnExporterGoneBeforeItsTargetAnswersNothing) {
  CORLITH_REQUIRE_DISPLAY();
  Fixture f;
  f.Open();
  { corlith::ui::CheckDataExporter exporter(*f.target); }
  f.dialog->OnExport();
  EXPECT_EQ(f.Numbers().back(), 600) << "the target's own handler still sees it";
}

TEST(CheckDataInputDlg, ATallDialogIsShrunkToTheScreenAndItsViewsFollow) {
  CORLITH_REQUIRE_DISPLAY();
  // The machine's screen is tall enough; this dialog is told of a shorter one.
  class OnShortScreen : public Dlg {
   public:
    using Dlg::Dlg;

   protected:
    int GetScreenHeight() const override { return 600; }
  };
  OnShortScreen tall;
  Dlg normal;
  ASSERT_TRUE(tall.Create());
  ASSERT_TRUE(normal.Create());
  EXPECT_EQ(normal.GetClientSize(), normal.ConvertDialogToPixels(wxSize(479, 454))) << "the screen has room";
  EXPECT_EQ(tall.GetSize().y, 500);
  const int lost = normal.GetClientSize().y - tall.GetClientSize().y;
  EXPECT_GT(lost, 0);
  const wxRect placeholder = normal.GetDlgItem(7004)->GetRect();
  EXPECT_EQ(tall.GetDlgItem(7004)->GetRect(),
            wxRect(placeholder.GetPosition(), placeholder.GetSize() - wxSize(0, lost)));
  EXPECT_EQ(tall.GetNetUsageGrid()->GetRect(), tall.GetDlgItem(7004)->GetRect());
  for (const int id : {IDCANCEL, 7006}) {
    SCOPED_TRACE(id);
    EXPECT_EQ(tall.GetDlgItem(id)->GetPosition(), normal.GetDlgItem(id)->GetPosition() - wxPoint(0, lost));
    EXPECT_LE(tall.GetDlgItem(id)->GetRect().GetBottom(), tall.GetClientSize().y);
  }
}

}  // namespace
