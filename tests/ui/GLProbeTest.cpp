// The OpenGL probe on a real Mesa driver under Xvfb, on a driver forced to draw nothing,
// and with no display at all. The last two run in a child: this test program started
// again with the environment that makes the case.
#include <corlith/test/ChildProcess.h>
#include <corlith/ui/GLProbe.h>

#include "UiTestEnvironment.h"

#include <wx/eventfilter.h>
#include <wx/glcanvas.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

// Set in a child: run the probe, print what it answered, and nothing else.
constexpr const char* kChildVariable = "CORLITH_GLPROBE_CHILD";

struct ProbeAnswer {
  int result = -1;
  long long milliseconds = -1;
  std::string version;
};

ProbeAnswer RunProbe() {
  ProbeAnswer answer;
  CString version("stale");
  const auto start = Clock::now();
  answer.result = IsEnableOpenGL(version, nullptr);
  answer.milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
  answer.version = version.GetString();
  return answer;
}

// "result=R ms=M version=V" from a child's output.
ProbeAnswer ParseAnswer(const std::string& output) {
  ProbeAnswer answer;
  const auto at = output.find("result=");
  if (at == std::string::npos) return answer;
  char version[256] = {};
  if (std::sscanf(output.c_str() + at, "result=%d ms=%lld version=%255[^\n]", &answer.result,
                  &answer.milliseconds, version) >= 2) {
    answer.version = version;
  }
  return answer;
}

TEST(GLProbeTest, DrawsRedAndReportsTheVersionUnderXvfb) {
  CORLITH_REQUIRE_DISPLAY();
  const ProbeAnswer answer = RunProbe();
  EXPECT_EQ(answer.result, 1);
  // Mesa's text begins with the version number, e.g. "4.5 (Compatibility Profile) Mesa 22.3.6".
  ASSERT_FALSE(answer.version.empty());
  EXPECT_TRUE(answer.version[0] >= '1' && answer.version[0] <= '9') << answer.version;
  // Answered from the drawn pixel, not by giving up.
  EXPECT_LT(answer.milliseconds, 2500);

  // A second probe in the same process answers the same (a fresh context each time).
  const ProbeAnswer again = RunProbe();
  EXPECT_EQ(again.result, 1);
  EXPECT_EQ(again.version, answer.version);
}

// Swallows every paint of an OpenGL view while it exists, as a compositor that never
// shows the view would.
class NoViewPaints : public wxEventFilter {
 public:
  NoViewPaints() { wxEvtHandler::AddFilter(this); }
  ~NoViewPaints() override { wxEvtHandler::RemoveFilter(this); }
  NoViewPaints(const NoViewPaints&) = delete;
  NoViewPaints& operator=(const NoViewPaints&) = delete;

  int FilterEvent(wxEvent& event) override {
    if (event.GetEventType() == wxEVT_PAINT && dynamic_cast<wxGLCanvas*>(event.GetEventObject()) != nullptr) {
      ++swallowed;
      return Event_Ignore;
    }
    return Event_Skip;
  }
  int swallowed = 0;
};

TEST(GLProbeTest, GivesUpAfterAboutThreeSecondsWhenTheViewIsNeverPainted) {
  CORLITH_REQUIRE_DISPLAY();
  ProbeAnswer answer;
  {
    NoViewPaints filter;
    answer = RunProbe();
    EXPECT_GT(filter.swallowed, 0) << "the timer kept asking for paints";
  }
  EXPECT_EQ(answer.result, 0);
  EXPECT_TRUE(answer.version.empty()) << "never painted, so never made current: " << answer.version;
  // Ticks are never early; late ones only stretch the wait.
  EXPECT_GE(answer.milliseconds, CGLDummy::kGiveUpMilliseconds);
  EXPECT_LT(answer.milliseconds, 3 * CGLDummy::kGiveUpMilliseconds);

  // Nothing of the abandoned probe is left behind: the next one draws.
  EXPECT_EQ(RunProbe().result, 1);
}

// A child of each kind prints its answer; the parent judges it.
TEST(GLProbeTest, AnswersZeroWhenNothingCanDraw) {
  if (std::getenv(kChildVariable) != nullptr) {
    const ProbeAnswer answer = RunProbe();
    std::printf("result=%d ms=%lld version=%s\n", answer.result, answer.milliseconds, answer.version.c_str());
    std::fflush(stdout);
    return;
  }
  CORLITH_REQUIRE_DISPLAY();
  struct Row {
    const char* name;
    std::vector<std::string> environment;
    long long maxMilliseconds;
    bool contextMade;  ///< a context was current: the version text is known
  };
  const Row rows[] = {
      // Mesa's no-op driver: contexts are made and made current, but nothing reaches
      // any buffer, so the read-back pixel is never red.
      {"mesa no-op driver", {"GALLIUM_NOOP=true", "LIBGL_ALWAYS_SOFTWARE=1"}, 3500, true},
      // No display: wx does not start, so there is no application; no window is tried.
      {"no display", {"DISPLAY=", "WAYLAND_DISPLAY="}, 100, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    std::vector<std::string> environment = row.environment;
    environment.push_back(std::string(kChildVariable) + "=1");
    corlith::test::ChildProcess child = corlith::test::StartThisTest(environment);
    ASSERT_TRUE(child.Started());
    const auto start = Clock::now();
    EXPECT_EQ(child.Wait(), 0) << child.Output();
    const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
    const ProbeAnswer answer = ParseAnswer(child.Output());
    EXPECT_EQ(answer.result, 0) << child.Output();
    EXPECT_GE(answer.milliseconds, 0) << child.Output();
    EXPECT_LE(answer.milliseconds, row.maxMilliseconds) << child.Output();
    // The no-op driver answers from the read-back pixel (its context works); with no
    // display the version is emptied, never left stale.
    EXPECT_EQ(!answer.version.empty(), row.contextMade) << child.Output();
    // The whole child (start-up included) stays within the probe's bound with room.
    EXPECT_LT(elapsed, 10000);
  }
}

}  // namespace
