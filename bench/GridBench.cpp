// The cell-grid control at board scale: 20,000 nets × 300 check items of 0/1 flags shown
// as "O", beside a plain wxGrid filled with CreateGrid and SetCellValue. Build, first
// paint, memory above the flags (the "MiB" counter) and hiding 19,000 rows then showing
// them again, each with the repaint. Needs a display: run it through
// tests/ui/with-display.sh.
#include <corlith/ui/grid/GridCtrl.h>

#include <benchmark/benchmark.h>
#include <wx/app.h>
#include <wx/frame.h>
#include <wx/init.h>

#include <malloc.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int kNets = 20000;
constexpr int kItems = 300;
constexpr int kShownAfterSearch = 1000;
constexpr int kRowHeight = 21;

/// Starts wx once; false without a display.
bool HaveWx() {
  static const bool started = [] {
    wxApp::SetInstance(new wxApp);
    int argc = 1;
    static char name[] = "GridBench";
    static char* argv[] = {name, nullptr};
    return wxEntryStart(argc, argv) && wxTheApp->CallOnInit();
  }();
  return started;
}

/// Heap memory in use, in MiB (freed blocks that the heap keeps do not count, so one
/// build's figure does not hide in the memory of the one before).
double HeapMiB() {
  const struct mallinfo2 info = mallinfo2();
  return static_cast<double>(info.uordblks + info.hblkhd) / (1024.0 * 1024.0);
}

/// The flags, one byte each, and their names.
struct Flags {
  std::vector<std::uint8_t> set;
  std::vector<std::string> nets;
  std::vector<std::string> items;
  Flags() : set(static_cast<std::size_t>(kNets) * kItems) {
    for (std::size_t i = 0; i < set.size(); ++i) set[i] = (i * 2654435761U >> 7) % 5 == 0 ? 1 : 0;
    for (int n = 0; n < kNets; ++n) nets.push_back("NET_" + std::to_string(n));
    for (int c = 0; c < kItems; ++c) items.push_back("Check item " + std::to_string(c));
  }
  bool At(int net, int item) const {
    return set[static_cast<std::size_t>(net) * kItems + static_cast<std::size_t>(item)] != 0;
  }
};

const Flags& TheFlags() {
  static const Flags flags;
  return flags;
}

/// The flags as the grid's data: row 0 the item names, column 0 the net names.
class FlagData : public CGridData {
 public:
  explicit FlagData(const Flags& flags) : m_flags(flags) {}
  int GetRowCount() const override { return kNets + 1; }
  int GetColumnCount() const override { return kItems + 1; }
  CString GetItemText(int row, int col) const override {
    if (row == 0)
      return col == 0 ? CString("Net") : CString(m_flags.items[static_cast<std::size_t>(col - 1)]);
    if (col == 0) return CString(m_flags.nets[static_cast<std::size_t>(row - 1)]);
    return m_flags.At(row - 1, col - 1) ? CString("O") : CString();
  }

 private:
  const Flags& m_flags;
};

/// A frame that goes with its grid.
struct Frame {
  wxFrame* frame = new wxFrame(nullptr, wxID_ANY, "GridBench", wxPoint(0, 0), wxSize(1000, 700));
  ~Frame() {
    frame->Destroy();
    wxTheApp->Yield(true);
  }
};

std::unique_ptr<Frame> BuildOurs(const FlagData& data, CGridCtrl*& grid) {
  auto frame = std::make_unique<Frame>();
  grid = new CGridCtrl;
  grid->Create(wxRect(0, 0, 980, 680), frame->frame, 1000);
  grid->SetData(const_cast<FlagData*>(&data));
  grid->SetFixedRowCount(1);
  grid->SetFixedColumnCount(1);
  grid->SetVerticalHeaderText(true);
  return frame;
}

std::unique_ptr<Frame> BuildPeer(const Flags& flags, wxGrid*& grid) {
  auto frame = std::make_unique<Frame>();
  grid = new wxGrid(frame->frame, 1000, wxPoint(0, 0), wxSize(980, 680));
  grid->CreateGrid(kNets, kItems);
  grid->SetDefaultCellOverflow(false);
  grid->SetColLabelTextOrientation(wxVERTICAL);
  for (int c = 0; c < kItems; ++c) grid->SetColLabelValue(c, flags.items[static_cast<std::size_t>(c)]);
  for (int n = 0; n < kNets; ++n) {
    grid->SetRowLabelValue(n, flags.nets[static_cast<std::size_t>(n)]);
    for (int c = 0; c < kItems; ++c)
      if (flags.At(n, c)) grid->SetCellValue(n, c, "O");
  }
  return frame;
}

void Paint(wxWindow& frame) {
  frame.Show();
  frame.Update();
  wxTheApp->Yield(true);
}

void Build(benchmark::State& state) {
  if (!HaveWx()) return state.SkipWithError("no display");
  const FlagData data(TheFlags());
  double above = 0;
  for (auto _ : state) {
    const double before = HeapMiB();
    CGridCtrl* grid = nullptr;
    auto frame = BuildOurs(data, grid);
    above = HeapMiB() - before;
    state.PauseTiming();
    frame.reset();
    state.ResumeTiming();
  }
  state.counters["MiB"] = above;
}
BENCHMARK(Build)->Name("Grid/build 20000x300")->Unit(benchmark::kMillisecond);

void BuildPeerGrid(benchmark::State& state) {
  if (!HaveWx()) return state.SkipWithError("no display");
  const Flags& flags = TheFlags();
  double above = 0;
  for (auto _ : state) {
    const double before = HeapMiB();
    wxGrid* grid = nullptr;
    auto frame = BuildPeer(flags, grid);
    above = HeapMiB() - before;
    state.PauseTiming();
    frame.reset();
    state.ResumeTiming();
  }
  state.counters["MiB"] = above;
}
BENCHMARK(BuildPeerGrid)
    ->Name("Grid/build 20000x300/peer:wxGrid SetCellValue")
    ->Unit(benchmark::kMillisecond);

void FirstPaint(benchmark::State& state) {
  if (!HaveWx()) return state.SkipWithError("no display");
  const FlagData data(TheFlags());
  for (auto _ : state) {
    state.PauseTiming();
    CGridCtrl* grid = nullptr;
    auto frame = BuildOurs(data, grid);
    state.ResumeTiming();
    Paint(*frame->frame);
    state.PauseTiming();
    frame.reset();
    state.ResumeTiming();
  }
}
BENCHMARK(FirstPaint)->Name("Grid/first paint")->Unit(benchmark::kMillisecond);

void FirstPaintPeer(benchmark::State& state) {
  if (!HaveWx()) return state.SkipWithError("no display");
  for (auto _ : state) {
    state.PauseTiming();
    wxGrid* grid = nullptr;
    auto frame = BuildPeer(TheFlags(), grid);
    state.ResumeTiming();
    Paint(*frame->frame);
    state.PauseTiming();
    frame.reset();
    state.ResumeTiming();
  }
}
BENCHMARK(FirstPaintPeer)->Name("Grid/first paint/peer:wxGrid SetCellValue")->Unit(benchmark::kMillisecond);

/// Heights after a search that keeps every 20th net: 19,000 rows hidden.
std::vector<int> SearchHeights() {
  std::vector<int> heights(kNets + 1, 0);
  heights[0] = -1;  // the header keeps its height
  for (int n = 0; n < kNets; n += kNets / kShownAfterSearch)
    heights[static_cast<std::size_t>(n) + 1] = kRowHeight;
  return heights;
}

void HideAndShow(benchmark::State& state) {
  if (!HaveWx()) return state.SkipWithError("no display");
  const FlagData data(TheFlags());
  CGridCtrl* grid = nullptr;
  auto frame = BuildOurs(data, grid);
  Paint(*frame->frame);
  const std::vector<int> search = SearchHeights();
  std::vector<int> reset(kNets + 1, kRowHeight);
  reset[0] = -1;
  for (auto _ : state) {
    grid->SetRowHeights(search);
    grid->Update();
    grid->SetRowHeights(reset);
    grid->Update();
  }
  if (grid->GetNumberRows() != kNets) state.SkipWithError("rows not all shown again");
}
BENCHMARK(HideAndShow)->Name("Grid/hide 19000 rows and show again")->Unit(benchmark::kMillisecond);

void HideAndShowPeer(benchmark::State& state) {
  if (!HaveWx()) return state.SkipWithError("no display");
  wxGrid* grid = nullptr;
  auto frame = BuildPeer(TheFlags(), grid);
  Paint(*frame->frame);
  const std::vector<int> search = SearchHeights();
  for (auto _ : state) {
    // The fastest per-row way: every size inside one batch.
    grid->BeginBatch();
    for (int n = 0; n < kNets; ++n) grid->SetRowSize(n, search[static_cast<std::size_t>(n) + 1]);
    grid->EndBatch();
    grid->Update();
    grid->BeginBatch();
    for (int n = 0; n < kNets; ++n) grid->SetRowSize(n, kRowHeight);
    grid->EndBatch();
    grid->Update();
  }
}
BENCHMARK(HideAndShowPeer)
    ->Name("Grid/hide 19000 rows and show again/peer:wxGrid SetRowSize")
    ->Unit(benchmark::kMillisecond);

}  // namespace
