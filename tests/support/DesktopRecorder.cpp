#include <corlith/test/DesktopRecorder.h>

#include <sys/stat.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>

namespace corlith::test {

namespace fs = std::filesystem;

DesktopRecorder::DesktopRecorder() : m_root("desktop"), m_records(m_root.Path() / "records.txt") {
  const fs::path config = m_root.Path() / "config";
  const fs::path data = m_root.Path() / "data";
  fs::create_directories(config);
  fs::create_directories(data / "applications");
  fs::create_directories(m_root.Path() / "config-dirs");
  fs::create_directories(m_root.Path() / "data-dirs");
  fs::create_directories(m_root.Path() / "runtime");

  const fs::path script = m_root.Path() / "record.sh";
  m_root.Write("record.sh", "#!/bin/sh\nprintf '%s\\n' \"$1\" >> '" + m_records.string() + "'\n");
  fs::permissions(script, fs::perms::owner_all);
  m_root.Write("data/applications/recorder.desktop",
               "[Desktop Entry]\nType=Application\nName=Recorder\nExec=" + script.string() + " %u\n");
  m_root.Write("config/mimeapps.list",
               "[Default Applications]\n"
               "application/pdf=recorder.desktop\n"
               "text/html=recorder.desktop\n"
               "x-scheme-handler/http=recorder.desktop\n"
               "x-scheme-handler/https=recorder.desktop\n");

  m_set = {
      "DISPLAY=:7311",
      "XDG_CONFIG_HOME=" + config.string(),
      "XDG_DATA_HOME=" + data.string(),
      "XDG_CONFIG_DIRS=" + (m_root.Path() / "config-dirs").string(),
      "XDG_DATA_DIRS=" + (m_root.Path() / "data-dirs").string(),
      "XDG_RUNTIME_DIR=" + (m_root.Path() / "runtime").string(),
      "DBUS_SESSION_BUS_ADDRESS=unix:path=" + (m_root.Path() / "no-bus").string(),
  };
  m_unset = {"XDG_CURRENT_DESKTOP",
             "DESKTOP_SESSION",
             "KDE_FULL_SESSION",
             "KDE_SESSION_VERSION",
             "GNOME_DESKTOP_SESSION_ID",
             "MATE_DESKTOP_SESSION_ID",
             "LXQT_SESSION_CONFIG",
             "DESKTOP",
             "BROWSER",
             "WAYLAND_DISPLAY",
             "XDG_MENU_PREFIX"};
}

std::vector<std::string> DesktopRecorder::Records() const {
  std::vector<std::string> records;
  std::istringstream in(ReadFile(m_records));
  for (std::string line; std::getline(in, line);) records.push_back(line);
  return records;
}

std::vector<std::string> DesktopRecorder::WaitForRecords(std::size_t count,
                                                         std::chrono::milliseconds timeout) const {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  std::vector<std::string> records = Records();
  while (records.size() < count && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    records = Records();
  }
  return records;
}

ScopedEnvironment::ScopedEnvironment(const std::vector<std::string>& set,
                                     const std::vector<std::string>& unset) {
  for (const std::string& entry : set) {
    const std::size_t equals = entry.find('=');
    const std::string name = entry.substr(0, equals);
    Save(name);
    ::setenv(name.c_str(), equals == std::string::npos ? "" : entry.c_str() + equals + 1, 1);
  }
  for (const std::string& name : unset) {
    Save(name);
    ::unsetenv(name.c_str());
  }
}

ScopedEnvironment::~ScopedEnvironment() {
  // Backwards, so a name saved twice ends with its first (original) value.
  for (auto it = m_saved.rbegin(); it != m_saved.rend(); ++it) {
    if (it->second) {
      ::setenv(it->first.c_str(), it->second->c_str(), 1);
    } else {
      ::unsetenv(it->first.c_str());
    }
  }
}

void ScopedEnvironment::Save(const std::string& name) {
  const char* value = std::getenv(name.c_str());
  m_saved.emplace_back(name, value != nullptr ? std::optional<std::string>(value) : std::nullopt);
}

}  // namespace corlith::test
