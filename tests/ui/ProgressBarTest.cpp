// CGProgressBar and CGMarqueeThread with the real helper program (corlith-progress of
// this build tree, named through CORLITH_PROGRESS_HELPER) on the test's display, seen from
// outside with xdotool and import; and with a recording stand-in for the helper, a shell
// script that writes down every command it is sent.
#include <corlith/platform/Path.h>
#include <corlith/platform/Process.h>
#include <corlith/test/TempFolder.h>
#include <corlith/ui/ProgressBar.h>

#include "UiTestEnvironment.h"

#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <wx/frame.h>
#include <wx/image.h>
#include <wx/settings.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;
using corlith::platform::Process;
using corlith::platform::SpawnOptions;
using corlith::platform::StreamTarget;
using corlith::test::TempFolder;
using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr const char* kHostVariable = "CORLITH_PROGRESS_TEST_HOST";

// The helper built beside libcorlith_ui in this build tree (tests/ui/<test> -> src/).
fs::path BuiltHelper() {
  return fs::path(corlith::platform::ExecutablePath()).parent_path() / ".." / ".." / "src" /
         "corlith-progress";
}

void UseHelper(const fs::path& program) { ::setenv("CORLITH_PROGRESS_HELPER", program.c_str(), 1); }

// Runs a tool and returns its standard output (empty on failure).
std::string RunTool(std::vector<std::string> arguments) {
  SpawnOptions options;
  options.program = arguments.front();
  options.arguments.assign(arguments.begin() + 1, arguments.end());
  options.output = StreamTarget::Pipe();
  const corlith::platform::RunResult result = corlith::platform::RunHidden(options, 20s);
  return result.error == 0 && !result.timedOut ? result.output : std::string();
}

std::string Trim(std::string text) {
  while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
  return text;
}

std::string WindowIdText(HWND hWnd) { return std::to_string(reinterpret_cast<std::uintptr_t>(hWnd)); }

struct Geometry {
  int x = 0, y = 0, width = 0, height = 0;
};

std::optional<Geometry> GeometryOf(const std::string& windowId) {
  std::istringstream shell(RunTool({"xdotool", "getwindowgeometry", "--shell", windowId}));
  Geometry g;
  int found = 0;
  for (std::string line; std::getline(shell, line);) {
    const std::size_t eq = line.find('=');
    if (eq == std::string::npos) continue;
    const std::string key = line.substr(0, eq);
    const int value = std::atoi(line.c_str() + eq + 1);
    if (key == "X") g.x = value, ++found;
    if (key == "Y") g.y = value, ++found;
    if (key == "WIDTH") g.width = value, ++found;
    if (key == "HEIGHT") g.height = value, ++found;
  }
  if (found != 4) return std::nullopt;
  return g;
}

// A process has ended once it is gone or a zombie nobody has reaped yet.
bool Ended(int pid) {
  std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
  std::string text((std::istreambuf_iterator<char>(stat)), std::istreambuf_iterator<char>());
  const std::size_t close = text.rfind(')');
  return close == std::string::npos || (close + 2 < text.size() && text[close + 2] == 'Z');
}

bool EndsWithin(int pid, std::chrono::milliseconds limit) {
  const auto until = Clock::now() + limit;
  while (!Ended(pid)) {
    if (Clock::now() >= until) return false;
    std::this_thread::sleep_for(10ms);
  }
  return true;
}

// This process's children, from every thread's list.
std::vector<int> Children() {
  std::vector<int> pids;
  for (const auto& task : fs::directory_iterator("/proc/self/task")) {
    std::ifstream list(task.path() / "children");
    for (int pid = 0; list >> pid;) pids.push_back(pid);
  }
  return pids;
}

int ArrowHeight() {
  const int arrow = wxSystemSettings::GetMetric(wxSYS_VSCROLL_ARROW_Y);
  return arrow > 0 ? arrow : wxSystemSettings::GetMetric(wxSYS_VSCROLL_X);
}

wxImage Screenshot(const std::string& windowId, const fs::path& file) {
  RunTool({"import", "-window", windowId, file.string()});
  return wxImage(file.string(), wxBITMAP_TYPE_PNG);
}

class ProgressBarTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!corlith::test::HaveDisplay()) return;
    UseHelper(BuiltHelper());
    m_frame = new wxFrame(nullptr, wxID_ANY, "progress owner", wxPoint(0, 0), wxSize(640, 480));
    m_frame->Show();
    m_owner = CWnd(m_frame);
    corlith::test::Pump(100);
  }
  void TearDown() override {
    CGProgressBar::instance().Close();
    if (m_frame != nullptr) m_frame->Destroy();
    corlith::test::Pump(20);
  }
  std::string OwnerId() const { return Trim(RunTool({"xdotool", "search", "--name", "^progress owner$"})); }

  wxFrame* m_frame = nullptr;
  CWnd m_owner;  ///< outlives every bar of a test (the singleton keeps a pointer to it)
  TempFolder m_folder{"progress"};
};

TEST_F(ProgressBarTest, NullOwnerReturnsAtOnceAndStartsNothing) {
  CORLITH_REQUIRE_DISPLAY();
  const std::vector<int> before = Children();
  static CWnd noWindow;
  for (CWnd* owner : {static_cast<CWnd*>(nullptr), &noWindow}) {
    SCOPED_TRACE(owner == nullptr ? "null owner" : "owner on no window");
    const auto start = Clock::now();
    CGProgressBar::instance().Show(owner, CString("nothing"));
    EXPECT_LT(Clock::now() - start, 50ms);
    EXPECT_EQ(CGProgressBar::instance().GetHWnd(), nullptr);
    EXPECT_EQ(Children(), before);
  }
}

TEST_F(ProgressBarTest, BarShowsCentredOnItsOwnerWhichItDisablesUntilClose) {
  CORLITH_REQUIRE_DISPLAY();
  ASSERT_TRUE(fs::exists(BuiltHelper())) << "build the corlith-progress target first";
  const std::string ownerId = OwnerId();
  ASSERT_FALSE(ownerId.empty());
  const std::optional<Geometry> owner = GeometryOf(ownerId);
  ASSERT_TRUE(owner);
  struct Row {
    const char* name;
    bool enabledBefore;
  };
  for (const Row& row : {Row{"enabled owner", true}, Row{"owner disabled before", false}}) {
    SCOPED_TRACE(row.name);
    m_frame->Enable(row.enabledBefore);
    CGProgressBar& bar = CGProgressBar::instance();
    bar.Show(&m_owner, CString("Copying the board files"));
    ASSERT_NE(bar.GetHWnd(), nullptr);
    const std::string barId = WindowIdText(bar.GetHWnd());
    EXPECT_EQ(Trim(RunTool({"xdotool", "search", "--name", "^Copying the board files$"})), barId);
    EXPECT_FALSE(m_frame->IsThisEnabled());

    const std::optional<Geometry> g = GeometryOf(barId);
    ASSERT_TRUE(g);
    const int h = ArrowHeight();
    EXPECT_EQ(g->width, 400);
    EXPECT_EQ(g->height, h);
    EXPECT_EQ(g->x, owner->x + owner->width / 2 - 200);
    EXPECT_EQ(g->y, owner->y + owner->height / 2 - h);

    bar.SetTitle(CString("Almost done"));
    corlith::test::Pump(50);
    const auto titled = Clock::now() + 5s;
    while (Trim(RunTool({"xdotool", "search", "--name", "^Almost done$"})) != barId &&
           Clock::now() < titled) {
      std::this_thread::sleep_for(20ms);
    }
    EXPECT_EQ(Trim(RunTool({"xdotool", "search", "--name", "^Almost done$"})), barId);

    const int pid = std::atoi(RunTool({"xdotool", "getwindowpid", barId}).c_str());
    ASSERT_GT(pid, 0);
    bar.Close();
    EXPECT_TRUE(m_frame->IsThisEnabled()) << "Close enables the owner in every case";
    EXPECT_EQ(bar.GetHWnd(), nullptr);
    EXPECT_TRUE(EndsWithin(pid, 1s)) << "the helper goes within a second";
  }
}

TEST_F(ProgressBarTest, BarKeepsDrawingWhileTheHostsThreadIsBlocked) {
  CORLITH_REQUIRE_DISPLAY();
  CGProgressBar& bar = CGProgressBar::instance();
  bar.Show(&m_owner, CString("Blocked host"));
  ASSERT_NE(bar.GetHWnd(), nullptr);
  const std::string barId = WindowIdText(bar.GetHWnd());
  // Two seconds without a single pass of this thread's event loop, sending positions.
  const auto start = Clock::now();
  wxImage early;
  wxImage late;
  for (int step = 0; Clock::now() - start < 2s; ++step) {
    bar.SetPos(step * 5);
    std::this_thread::sleep_for(100ms);
    if (step == 6) early = Screenshot(barId, m_folder.Path() / "early.png");
    if (step == 16) late = Screenshot(barId, m_folder.Path() / "late.png");
  }
  ASSERT_TRUE(early.IsOk());
  ASSERT_TRUE(late.IsOk());
  ASSERT_EQ(early.GetSize(), late.GetSize());
  const std::size_t bytes =
      static_cast<std::size_t>(early.GetWidth()) * static_cast<std::size_t>(early.GetHeight()) * 3;
  EXPECT_NE(std::string(reinterpret_cast<const char*>(early.GetData()), bytes),
            std::string(reinterpret_cast<const char*>(late.GetData()), bytes))
      << "the bar moved on while the host was blocked";
  bar.Close();
}

TEST_F(ProgressBarTest, OnlyCommandsWhileABarIsUpReachTheHelper) {
  CORLITH_REQUIRE_DISPLAY();
  // A stand-in that reports a window and writes down what it is sent until its input ends.
  const std::string log = m_folder.PathOf("sent.log");
  const std::string recorder =
      m_folder.Write("recorder.sh", "#!/bin/sh\necho 'ready 4242'\nexec cat > '" + log + "'\n");
  const std::string failing = m_folder.Write("failing.sh", "#!/bin/sh\necho 'failed no display'\n");
  ::chmod(recorder.c_str(), 0755);
  ::chmod(failing.c_str(), 0755);
  struct Row {
    const char* name;
    std::string helper;
    HWND shown;
    std::string sent;
  };
  const std::vector<Row> rows = {
      {"recording helper", recorder, reinterpret_cast<HWND>(std::uintptr_t{4242}),
       "pos 30\npos 100\npos 0\ntitle Step two\nclose\n"},
      {"helper that fails", failing, nullptr, ""},
      {"no helper at all", m_folder.PathOf("missing"), nullptr, ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    fs::remove(log);
    UseHelper(row.helper);
    m_frame->Enable();
    CGProgressBar& bar = CGProgressBar::instance();
    bar.Show(&m_owner, CString("Recorded"));
    EXPECT_EQ(bar.GetHWnd(), row.shown);
    EXPECT_FALSE(m_frame->IsThisEnabled()) << "the owner is disabled even when no bar shows";
    bar.SetPos(30);
    bar.SetPos(150);
    bar.SetPos(-5);
    bar.SetTitle(CString("Step\ntwo"));
    bar.Close();
    EXPECT_TRUE(m_frame->IsThisEnabled());
    bar.SetPos(60);
    bar.SetTitle(CString("late"));
    if (row.shown == nullptr) {
      EXPECT_FALSE(fs::exists(log));
      continue;
    }
    // cat ends with its input, which Close closed.
    std::string sent;
    for (const auto until = Clock::now() + 10s; Clock::now() < until; std::this_thread::sleep_for(20ms)) {
      std::ifstream in(log);
      sent.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
      if (sent.ends_with("close\n")) break;
    }
    std::this_thread::sleep_for(100ms);
    std::ifstream in(log);
    sent.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    EXPECT_EQ(sent, row.sent);
  }
}

TEST_F(ProgressBarTest, DebugTraceOfTheOwnerGoesToStandardErrorWhenAsked) {
  CORLITH_REQUIRE_DISPLAY();
  const std::string quiet = m_folder.Write("quiet.sh", "#!/bin/sh\necho 'ready 7'\nexec cat >/dev/null\n");
  ::chmod(quiet.c_str(), 0755);
  UseHelper(quiet);
  for (const bool on : {false, true}) {
    SCOPED_TRACE(on ? "debug output on" : "debug output off");
    CGProgressBar::SetDebugOutput(on);
    ::testing::internal::CaptureStderr();
    CGProgressBar::instance().Show(&m_owner, CString("traced"));
    CGProgressBar::instance().Close();
    const std::string trace = ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(trace, on ? "Start -> EnableWindow( FALSE )\nEnd   -> EnableWindow( FALSE )\n"
                          "Start -> EnableWindow( TRUE )\nEnd   -> EnableWindow( TRUE )\n"
                        : "");
  }
  CGProgressBar::SetDebugOutput(false);
}

// Plays the host for KillingTheHostEndsTheHelper (run only as its child): shows a bar,
// says which process draws it, and waits to be killed.
TEST_F(ProgressBarTest, DISABLED_HostThatIsKilled) {
  CORLITH_REQUIRE_DISPLAY();
  if (std::getenv(kHostVariable) == nullptr)
    GTEST_SKIP() << "only as the child of KillingTheHostEndsTheHelper";
  CGProgressBar::instance().Show(&m_owner, CString("Orphaned bar"));
  const std::string pid =
      Trim(RunTool({"xdotool", "getwindowpid", WindowIdText(CGProgressBar::instance().GetHWnd())}));
  std::printf("helper %s\n", pid.c_str());
  std::fflush(stdout);
  std::this_thread::sleep_for(60s);
}

TEST_F(ProgressBarTest, KillingTheHostEndsTheHelper) {
  CORLITH_REQUIRE_DISPLAY();
  SpawnOptions options;
  options.program = corlith::platform::ExecutablePath();
  options.arguments = {"--gtest_also_run_disabled_tests",
                       "--gtest_filter=ProgressBarTest.DISABLED_HostThatIsKilled"};
  options.environment = {std::string(kHostVariable) + "=1",
                         "CORLITH_PROGRESS_HELPER=" + BuiltHelper().string()};
  options.output = StreamTarget::Pipe();
  Process host;
  ASSERT_EQ(corlith::platform::Spawn(options, host), 0);
  int helper = 0;
  for (std::optional<std::string> line; (line = host.ReadOutputLine(30s));) {
    if (line->starts_with("helper ")) {
      helper = std::atoi(line->c_str() + 7);
      break;
    }
  }
  ASSERT_GT(helper, 0) << "the host never showed its bar";
  EXPECT_FALSE(Ended(helper));
  ::kill(host.Id(), SIGKILL);
  host.Wait();
  EXPECT_TRUE(EndsWithin(helper, 1s)) << "the helper outlived its host";
}

TEST_F(ProgressBarTest, MarqueeThreadStartsShowsHidesAndQuitsItsDialog) {
  CORLITH_REQUIRE_DISPLAY();
  CGMarqueeThread thread;
  EXPECT_EQ(thread.ShowDialog(), FALSE) << "nothing started yet";
  ASSERT_EQ(thread.Start(), TRUE);
  const std::string id = WindowIdText(thread.GetMainHwnd());
  ASSERT_NE(thread.GetMainHwnd(), nullptr);
  const int pid = std::atoi(RunTool({"xdotool", "getwindowpid", id}).c_str());
  auto shown = [&id] {
    const std::string state = RunTool({"xwininfo", "-id", id});
    return state.find("IsViewable") != std::string::npos;
  };
  EXPECT_FALSE(shown()) << "hidden until shown";
  ASSERT_EQ(thread.ShowDialog(), TRUE);
  for (const auto until = Clock::now() + 5s; !shown() && Clock::now() < until;)
    std::this_thread::sleep_for(20ms);
  EXPECT_TRUE(shown());
  // The strip moves: two pictures a few frames apart differ.
  std::this_thread::sleep_for(150ms);
  const wxImage first = Screenshot(id, m_folder.Path() / "m1.png");
  std::this_thread::sleep_for(250ms);
  const wxImage second = Screenshot(id, m_folder.Path() / "m2.png");
  ASSERT_TRUE(first.IsOk() && second.IsOk());
  const std::size_t bytes =
      static_cast<std::size_t>(first.GetWidth()) * static_cast<std::size_t>(first.GetHeight()) * 3;
  ASSERT_EQ(first.GetSize(), second.GetSize());
  EXPECT_NE(std::string(reinterpret_cast<const char*>(first.GetData()), bytes),
            std::string(reinterpret_cast<const char*>(second.GetData()), bytes));
  ASSERT_EQ(thread.HideDialog(), TRUE);
  for (const auto until = Clock::now() + 5s; shown() && Clock::now() < until;)
    std::this_thread::sleep_for(20ms);
  EXPECT_FALSE(shown());
  thread.Quit();
  EXPECT_EQ(thread.GetMainHwnd(), nullptr);
  EXPECT_EQ(thread.ShowDialog(), FALSE);
  if (pid > 0) {
    EXPECT_TRUE(EndsWithin(pid, 1s));
  }
}

}  // namespace
