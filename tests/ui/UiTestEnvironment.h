// The wx application every user-interface test runs in. The environment starts wx once
// per test program; without a display it does not, and each test skips itself through
// CORLITH_REQUIRE_DISPLAY with a message saying why. Nothing here ever waits for a
// person: a failed wx assertion fails the test, wx's log goes to standard error, and
// RunModalFor ends a modal dialog that the test forgot to end.
#pragma once

#include <corlith/test/TempFolder.h>
#include <gtest/gtest.h>
#include <wx/dialog.h>
#include <wx/window.h>

#include <chrono>
#include <filesystem>
#include <functional>

namespace corlith::test {

/// True when wx started on a display.
bool HaveDisplay();

/// Delivers pending events (and repaints) for about `milliseconds`.
void Pump(int milliseconds = 50);

/// Delivers pending events until `done` answers true (true) or `milliseconds` have
/// passed (false): for what GTK finishes in its own time, as animated scrolling.
bool PumpUntil(const std::function<bool()>& done, int milliseconds = 2000);

/// Shows `dialog` modally, runs `body` once the dialog is up, and ends the dialog with
/// `code` afterwards (or after `limit`, failing the test, when body never returns to the
/// loop). Returns what ShowModal returned.
int RunModalFor(wxDialog& dialog, const std::function<void()>& body, int code = wxID_CANCEL,
                std::chrono::milliseconds limit = std::chrono::seconds(10));

/// Where a test keeps a picture named `name`: in $CORLITH_UI_SHOTS when set (to be
/// looked at after the run), else in `fallback`.
std::filesystem::path ShotPath(const TempFolder& fallback, const char* name);

/// Saves `window` as it paints itself (RenderWindow: right also when covered) as PNG;
/// false when it cannot.
bool SaveWindowPng(wxWindow& window, const std::filesystem::path& file);

}  // namespace corlith::test

/// Skips the current test, visibly, when there is no display.
#define CORLITH_REQUIRE_DISPLAY()                                                     \
  do {                                                                                \
    if (!corlith::test::HaveDisplay()) GTEST_SKIP() << "no display: UI test skipped"; \
  } while (0)
