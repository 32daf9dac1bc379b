// A recording desktop handler: XDG configuration in a temporary folder that makes the
// real xdg-open hand PDF files, HTML files and http/https addresses to a small script
// that appends each target to a file, so tests see what would have been opened and no
// application (never a browser) starts. The variables go to a child process
// (Environment(), UnsetVariables()) or to this process for a scope (ScopedEnvironment).
#pragma once

#include <corlith/test/TempFolder.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace corlith::test {

class DesktopRecorder {
 public:
  /// Writes $XDG_CONFIG_HOME/mimeapps.list, $XDG_DATA_HOME/applications/recorder.desktop
  /// and the script. Throws std::filesystem::filesystem_error or std::ios_base::failure
  /// when they cannot be written.
  DesktopRecorder();

  /// The handler's folder (no blanks in its path: xdg-open cuts Exec at blanks).
  const std::filesystem::path& Root() const { return m_root.Path(); }
  /// "NAME=value" entries: a display name, the XDG folders of the handler (system folders
  /// replaced by empty ones, so no installed application is ever chosen), a session bus
  /// address that leads nowhere (no bus is started to guess the desktop).
  const std::vector<std::string>& Environment() const { return m_set; }
  /// The desktop-detection variables, BROWSER and WAYLAND_DISPLAY: to be removed.
  const std::vector<std::string>& UnsetVariables() const { return m_unset; }

  /// The targets the handler received so far, oldest first, one per call.
  std::vector<std::string> Records() const;
  /// Waits until at least `count` targets are recorded or `timeout` passed; the records.
  std::vector<std::string> WaitForRecords(std::size_t count,
                                          std::chrono::milliseconds timeout = std::chrono::seconds(20)) const;

 private:
  TempFolder m_root;
  std::filesystem::path m_records;
  std::vector<std::string> m_set;
  std::vector<std::string> m_unset;
};

/// Sets and removes environment variables of this process, restoring every one of them
/// when it goes. Not thread-safe, as the environment is not: use it where no other
/// thread reads variables.
class ScopedEnvironment {
 public:
  ScopedEnvironment(const std::vector<std::string>& set, const std::vector<std::string>& unset);
  ~ScopedEnvironment();
  ScopedEnvironment(const ScopedEnvironment&) = delete;
  ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

 private:
  void Save(const std::string& name);
  std::vector<std::pair<std::string, std::optional<std::string>>> m_saved;
};

}  // namespace corlith::test
