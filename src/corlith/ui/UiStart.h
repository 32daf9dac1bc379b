// Starting the user-interface library: Start() installs the wxWidgets prompts (message
// boxes, file and folder choosers) and desktop hooks (event pumping, the arrow cursor, the
// mouse capture) in place of the headless defaults; Stop() puts back what was there.
// A host that never calls Start() keeps the headless behaviour.
#pragma once

#include <corlith/framework/DesktopHooks.h>
#include <corlith/framework/HostPrompt.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corlith::ui {

/// Installs WxHostPrompt and WxDesktopHooks. Call on wx's main thread once the wx
/// application exists (after wxEntryStart or from OnInit). Returns false, installing
/// nothing, when there is no wx application or the call is not on the main thread;
/// a second Start() returns true and changes nothing.
bool Start();
/// Restores the prompt and hooks that were in force before Start(); does nothing when
/// the library was not started. Call before wx shuts down.
void Stop();
/// True between Start() and Stop().
bool IsStarted();

/// Starts the library for the lifetime of this object (Start() result in Started()).
class ScopedStart {
 public:
  ScopedStart() : m_started(Start()) {}
  ~ScopedStart() {
    if (m_started) Stop();
  }
  ScopedStart(const ScopedStart&) = delete;
  ScopedStart& operator=(const ScopedStart&) = delete;
  bool Started() const { return m_started; }

 private:
  bool m_started;
};

/// How a message-box style shows as a wxMessageDialog.
struct MessageBoxLook {
  long style = 0;  ///< wxOK, wxYES_NO, wxCANCEL, wxICON_*, wxNO_DEFAULT/wxCANCEL_DEFAULT
  /// Labels replacing the Yes/No/Cancel (or OK/Cancel) buttons' own, for the button sets
  /// wx lacks (Abort/Retry/Ignore on Yes/No/Cancel, Retry/Cancel on OK/Cancel); empty
  /// when the stock labels are right.
  std::vector<std::string> labels;
};

/// The wxMessageDialog look of an MB_* style (unknown button sets show OK alone, as the
/// answer mapping treats them).
MessageBoxLook MessageBoxLookOf(UINT type);
/// The answer (IDOK, IDYES, ...) for the wx id a message dialog of `type` ended with.
/// Closing a box without a Cancel button (Escape, the close box) gives IDOK for MB_OK and
/// the style's default button otherwise.
int MessageBoxAnswerOf(UINT type, int wxId);

/// The wxFileDialog wildcard of a framework filter "Desc|*.a;*.b|Desc 2|*.*||": the list
/// ends at the first empty field (as the framework's double bar ends it), and a
/// description without patterns is dropped. No rows at all gives "" (every file shown).
std::string WildcardOfFilter(std::string_view filter);
/// The wxFileDialog style of a request: open (must exist, multiple when asked) or save
/// (overwrite prompt when OFN_OVERWRITEPROMPT is set).
long FileDialogStyleOf(const FileChooserRequest& request);
/// `path` with "." + the request's default extension added when a save request's chosen
/// name has none (as the original's chooser adds it); unchanged otherwise.
std::string WithDefaultExtension(const FileChooserRequest& request, const std::string& path);

/// Prompts as wx dialogs. Safe from any thread: a call from another thread runs on the
/// main thread (through CallAfter) and waits for the answer, so the main thread must be
/// running its event loop then. Without a wx application the answers are headless ones.
class WxHostPrompt : public IHostPrompt {
 public:
  int MessageBox(const std::string& text, const std::string& caption, UINT type) override;
  std::optional<std::vector<std::string>> ChooseFiles(const FileChooserRequest& request) override;
  std::optional<std::string> ChooseFolder(const FolderChooserRequest& request) override;
};

/// Desktop hooks over wx's event loop. They act for calls on the main thread; from any
/// other thread Wait only sleeps and the rest does nothing (those threads own no window).
class WxDesktopHooks : public IDesktopHooks {
 public:
  void Wait(DWORD milliseconds) override;
  void ProcessWindowMessage() override;
  void SetArrowCursor() override;
  void ReleaseMouseCapture() override;
};

}  // namespace corlith::ui
