#include "UiTestEnvironment.h"

#include <corlith/ui/WindowCapture.h>

#include <wx/app.h>
#include <wx/image.h>
#include <wx/init.h>
#include <wx/log.h>
#include <wx/timer.h>
#include <wx/utils.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

namespace corlith::test {
namespace {

bool g_haveDisplay = false;

class TestApp : public wxApp {
 public:
  bool OnInit() override { return true; }
  // A failure inside an event handler fails the test instead of opening a box.
  bool OnExceptionInMainLoop() override { throw; }
};

void FailOnAssert(const wxString& file, int line, const wxString& func, const wxString& cond,
                  const wxString& msg) {
  ADD_FAILURE_AT(file.utf8_str().data(), line) << "wx assertion in " << func.utf8_str().data() << ": "
                                               << cond.utf8_str().data() << " " << msg.utf8_str().data();
}

class WxEnvironment : public ::testing::Environment {
 public:
  void SetUp() override {
    static int argc = 1;
    static char name[] = "corlith-ui-tests";
    static char* argv[] = {name, nullptr};
    wxApp::SetInstance(new TestApp);
    if (!wxEntryStart(argc, argv)) {
      std::fprintf(stderr, "UI tests: no display (DISPLAY=%s): every UI test is skipped\n",
                   wxGetenv("DISPLAY") ? wxString(wxGetenv("DISPLAY")).utf8_str().data() : "unset");
      return;
    }
    wxSetAssertHandler(FailOnAssert);
    delete wxLog::SetActiveTarget(new wxLogStderr);
    wxInitAllImageHandlers();
    wxTheApp->CallOnInit();
    g_haveDisplay = true;
  }
  void TearDown() override {
    if (!g_haveDisplay || wxTheApp == nullptr) return;
    wxTheApp->OnExit();
    wxEntryCleanup();
    g_haveDisplay = false;
  }
};

const auto* const g_environment = ::testing::AddGlobalTestEnvironment(new WxEnvironment);

}  // namespace

bool HaveDisplay() { return g_haveDisplay; }

void Pump(int milliseconds) {
  if (!g_haveDisplay) return;
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
  do {
    wxTheApp->Yield(true);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  } while (std::chrono::steady_clock::now() < end);
}

bool PumpUntil(const std::function<bool()>& done, int milliseconds) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
  while (!done()) {
    if (std::chrono::steady_clock::now() >= end) return false;
    Pump(10);
  }
  return true;
}

int RunModalFor(wxDialog& dialog, const std::function<void()>& body, int code,
                std::chrono::milliseconds limit) {
  bool ended = false;
  wxTimer watchdog;
  watchdog.Bind(wxEVT_TIMER, [&](wxTimerEvent&) {
    if (!dialog.IsModal()) return;
    ADD_FAILURE() << "a modal dialog was still open after " << limit.count() << " ms";
    dialog.EndModal(code);
  });
  watchdog.StartOnce(static_cast<int>(limit.count()));
  dialog.CallAfter([&] {
    body();
    ended = true;
    if (dialog.IsModal()) dialog.EndModal(code);
  });
  const int result = dialog.ShowModal();
  watchdog.Stop();
  EXPECT_TRUE(ended) << "the test body did not finish before the dialog ended";
  return result;
}

std::filesystem::path ShotPath(const TempFolder& fallback, const char* name) {
  const char* folder = std::getenv("CORLITH_UI_SHOTS");
  return (folder != nullptr && *folder != '\0' ? std::filesystem::path(folder) : fallback.Path()) / name;
}

bool SaveWindowPng(wxWindow& window, const std::filesystem::path& file) {
  window.Update();
  Pump(100);
  const wxBitmap bitmap = corlith::ui::RenderWindow(window);
  return bitmap.IsOk() && bitmap.SaveFile(file.string(), wxBITMAP_TYPE_PNG);
}

}  // namespace corlith::test
