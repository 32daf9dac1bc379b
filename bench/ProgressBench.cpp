// The progress bar's helper program beside the floor of any wx program: starting
// corlith-progress until its bar is on the screen and one position has been drawn
// ("ready", "pos 50", "sync" answered), beside starting a minimal wx program until its
// one frame is drawn. Also the library's whole CGProgressBar Show + SetPos + Close.
// Run on a display (tests/ui/with-display.sh); the goal is within 1.2 of the floor.
#include <corlith/platform/Process.h>
#include <corlith/ui/ProgressBar.h>

#include <benchmark/benchmark.h>

#include <wx/app.h>
#include <wx/frame.h>
#include <wx/init.h>

#include <chrono>
#include <cstdlib>
#include <string>

namespace {

namespace platform = corlith::platform;
using namespace std::chrono_literals;

platform::SpawnOptions Piped(const char* program, std::vector<std::string> arguments) {
  platform::SpawnOptions options;
  options.program = program;
  options.arguments = std::move(arguments);
  options.input = platform::StreamTarget::Pipe();
  options.output = platform::StreamTarget::Pipe();
  return options;
}

// wx in this process, for the library's benchmark; started before the first child.
bool StartWx() {
  static const bool started = [] {
    static int argc = 1;
    static char name[] = "ProgressBench";
    static char* argv[] = {name, nullptr};
    wxApp::SetInstance(new wxApp);
    return wxEntryStart(argc, argv) && wxTheApp->CallOnInit();
  }();
  return started;
}

bool HaveDisplay(benchmark::State& state) {
  const char* display = std::getenv("DISPLAY");
  if (display == nullptr || *display == '\0' || !StartWx()) {
    state.SkipWithError("no display: run under tests/ui/with-display.sh");
    return false;
  }
  return true;
}

void BM_HelperBarShownAndPositioned(benchmark::State& state) {
  if (!HaveDisplay(state)) return;
  for (auto _ : state) {
    platform::Process helper;
    if (platform::Spawn(Piped(CORLITH_PROGRESS_HELPER_PATH, {"bar", "0", "0", "0", "800", "600", "bench"}),
                        helper) != 0) {
      state.SkipWithError("corlith-progress did not start");
      return;
    }
    const auto ready = helper.ReadOutputLine(10s);
    helper.WriteInput("pos 50\nsync\n");
    const auto synced = helper.ReadOutputLine(10s);
    if (!ready || !ready->starts_with("ready ") || synced != "synced") {
      state.SkipWithError("corlith-progress did not answer");
      return;
    }
    state.PauseTiming();
    helper.WriteInput("close\n");
    helper.CloseInput();
    helper.Wait();
    state.ResumeTiming();
  }
}
// Real time: the work is done in child processes. Google Benchmark adds "/real_time" to
// the names, so the peer is named after ours with that ending.
BENCHMARK(BM_HelperBarShownAndPositioned)
    ->Name("ProgressHelper/bar_shown_and_positioned")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

void BM_HelperBarShownAndPositioned_peer(benchmark::State& state) {
  if (!HaveDisplay(state)) return;
  for (auto _ : state) {
    platform::Process floor;
    if (platform::Spawn(Piped(CORLITH_MINIMAL_WX_PATH, {}), floor) != 0) {
      state.SkipWithError("the minimal wx program did not start");
      return;
    }
    if (floor.ReadOutputLine(10s) != "shown") {
      state.SkipWithError("the minimal wx program did not show its frame");
      return;
    }
    state.PauseTiming();
    floor.Wait();
    state.ResumeTiming();
  }
}
BENCHMARK(BM_HelperBarShownAndPositioned_peer)
    ->Name("ProgressHelper/bar_shown_and_positioned/real_time/peer:minimal wx frame")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// The library's side: Show returns with the bar up, SetPos writes one line, Close lets
// the helper go without waiting.
void BM_ProgressBarShowSetPosClose(benchmark::State& state) {
  if (!HaveDisplay(state)) return;
  if (!StartWx()) {
    state.SkipWithError("wx did not start");
    return;
  }
  ::setenv("CORLITH_PROGRESS_HELPER", CORLITH_PROGRESS_HELPER_PATH, 1);
  static wxFrame* frame = [] {
    auto* f = new wxFrame(nullptr, wxID_ANY, "bench owner", wxPoint(0, 0), wxSize(640, 480));
    f->Show();
    return f;
  }();
  CWnd owner(frame);
  for (auto _ : state) {
    CGProgressBar::instance().Show(&owner, CString("bench"));
    if (CGProgressBar::instance().GetHWnd() == nullptr) {
      state.SkipWithError("no bar");
      return;
    }
    CGProgressBar::instance().SetPos(50);
    CGProgressBar::instance().Close();
  }
}
BENCHMARK(BM_ProgressBarShowSetPosClose)
    ->Name("CGProgressBar/Show_SetPos_Close")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
