#include <corlith/platform/Desktop.h>
#include <corlith/platform/Diagnostics.h>
#include <corlith/platform/Path.h>

#include "ReadFully.h"

#include <fcntl.h>
#include <fontconfig/fontconfig.h>
#include <pwd.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace corlith::platform {
namespace {

namespace fs = std::filesystem;

// Desktop entries and mimeapps.list files are a few kilobytes; anything beyond this is
// not one of them and is read no further.
constexpr std::size_t kSettingsFileLimit = 1 << 20;

std::string_view Trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  const std::size_t last = text.find_last_not_of(" \t\r");
  return text.substr(first, last - first + 1);
}

// "  1234 kB" in bytes; false for anything else or a value that does not fit.
bool ParseKilobytes(std::string_view text, std::uint64_t& bytes) {
  text = Trim(text);
  if (!text.ends_with("kB")) return false;
  text = Trim(text.substr(0, text.size() - 2));
  if (text.empty()) return false;
  std::uint64_t value = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') return false;
    const auto digit = static_cast<std::uint64_t>(c - '0');
    if (value > (UINT64_MAX - digit) / 10) return false;
    value = value * 10 + digit;
  }
  if (value > UINT64_MAX / 1024) return false;
  bytes = value * 1024;
  return true;
}

// The whole of a file, at most `limit` bytes; false when it cannot be opened or read.
bool ReadSmallFile(const char* path, std::size_t limit, std::string& bytes, int& error) {
  const int fd = ::open(path, O_RDONLY | O_CLOEXEC);
  if (fd < 0) {
    error = errno;
    return false;
  }
  bytes.clear();
  char buffer[4096];
  error = 0;
  while (bytes.size() < limit) {
    std::size_t done = 0;
    error = posix::ReadFully(fd, buffer, sizeof buffer, done);
    if (error != 0) break;
    bytes.append(buffer, std::min(done, limit - bytes.size()));
    if (done < sizeof buffer) break;
  }
  ::close(fd);
  return error == 0;
}

bool ReadSmallFile(const fs::path& path, std::string& bytes) {
  int error = 0;
  return ReadSmallFile(path.c_str(), kSettingsFileLimit, bytes, error);
}

// --- fontconfig owners ------------------------------------------------------------------

struct PatternDeleter {
  void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};
struct ObjectSetDeleter {
  void operator()(FcObjectSet* objects) const { FcObjectSetDestroy(objects); }
};
struct FontSetDeleter {
  void operator()(FcFontSet* fonts) const { FcFontSetDestroy(fonts); }
};
struct ConfigDeleter {
  void operator()(FcConfig* config) const { FcConfigDestroy(config); }
};
using ConfigPtr = std::unique_ptr<FcConfig, ConfigDeleter>;
using PatternPtr = std::unique_ptr<FcPattern, PatternDeleter>;
using ObjectSetPtr = std::unique_ptr<FcObjectSet, ObjectSetDeleter>;
using FontSetPtr = std::unique_ptr<FcFontSet, FontSetDeleter>;

// --- XDG desktop files -------------------------------------------------------------------

// Calls visit(group, key, value) for every "key=value" line of a desktop-style file.
template <typename Visit>
void ForEachKey(std::string_view text, Visit&& visit) {
  std::string_view group;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    const std::string_view line = Trim(text.substr(0, end));
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    if (line.empty() || line.front() == '#') continue;
    if (line.front() == '[' && line.back() == ']') {
      group = line.substr(1, line.size() - 2);
      continue;
    }
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) continue;
    visit(group, Trim(line.substr(0, equals)), Trim(line.substr(equals + 1)));
  }
}

// True when the ";"-separated list holds `item`.
bool ListHolds(std::string_view list, std::string_view item) {
  while (!list.empty()) {
    const std::size_t end = list.find(';');
    if (Trim(list.substr(0, end)) == item) return true;
    if (end == std::string_view::npos) break;
    list.remove_prefix(end + 1);
  }
  return false;
}

template <typename Add>
void ForEachListItem(std::string_view list, Add&& add) {
  while (!list.empty()) {
    const std::size_t end = list.find(';');
    const std::string_view item = Trim(list.substr(0, end));
    if (!item.empty()) add(item);
    if (end == std::string_view::npos) break;
    list.remove_prefix(end + 1);
  }
}

// One desktop entry as far as the registration rule needs it.
struct DesktopEntry {
  bool application = false;
  bool hidden = false;
  bool listsType = false;
};

DesktopEntry ReadDesktopEntry(const fs::path& path, std::string_view mimeType) {
  DesktopEntry entry;
  std::string text;
  if (!ReadSmallFile(path, text)) return entry;
  ForEachKey(text, [&](std::string_view group, std::string_view key, std::string_view value) {
    if (group != "Desktop Entry") return;
    if (key == "Type") entry.application = value == "Application";
    if (key == "Hidden") entry.hidden = value == "true";
    if (key == "MimeType") entry.listsType = ListHolds(value, mimeType);
  });
  return entry;
}

// The ids a mimeapps.list names for the type: for it, and taken back.
struct Associations {
  std::set<std::string> named;
  std::set<std::string> removed;
};

void ReadMimeAppsList(const fs::path& path, std::string_view mimeType, Associations& associations) {
  std::string text;
  if (!ReadSmallFile(path, text)) return;
  ForEachKey(text, [&](std::string_view group, std::string_view key, std::string_view value) {
    if (key != mimeType) return;
    std::set<std::string>* into = nullptr;
    if (group == "Default Applications" || group == "Added Associations") into = &associations.named;
    if (group == "Removed Associations") into = &associations.removed;
    if (into != nullptr) ForEachListItem(value, [into](std::string_view id) { into->emplace(id); });
  });
}

// The absolute folders of a ":"-separated variable, or of its default when it is unset
// or names none (relative entries are invalid by the XDG rules).
std::vector<fs::path> FolderList(const char* variable, std::string_view fallback) {
  std::string value;
  std::vector<fs::path> folders;
  const auto add = [&folders](std::string_view list) {
    while (!list.empty()) {
      const std::size_t end = list.find(':');
      const std::string_view folder = list.substr(0, end);
      if (!folder.empty() && folder.front() == '/') folders.emplace_back(folder);
      if (end == std::string_view::npos) break;
      list.remove_prefix(end + 1);
    }
  };
  if (GetEnvironmentVariable(variable, value)) add(value);
  if (folders.empty()) add(fallback);
  return folders;
}

std::vector<fs::path> ApplicationFolders() {
  std::vector<fs::path> folders;
  if (const std::string home = UserDataFolder(); !home.empty())
    folders.push_back(fs::path(home) / "applications");
  for (const fs::path& folder : FolderList("XDG_DATA_DIRS", "/usr/local/share:/usr/share")) {
    folders.push_back(folder / "applications");
  }
  return folders;
}

// The desktop-file id of a file below an applications folder: "kde/calc.desktop" is
// "kde-calc.desktop".
std::string DesktopFileId(const fs::path& relative) {
  std::string id = relative.generic_string();
  for (char& c : id) c = c == '/' ? '-' : c;
  return id;
}

}  // namespace

bool ParseProcessStatus(std::string_view status, MemoryCounters& counters) {
  std::map<std::string_view, std::uint64_t> fields;
  while (!status.empty()) {
    const std::size_t end = status.find('\n');
    const std::string_view line = status.substr(0, end);
    status = end == std::string_view::npos ? std::string_view() : status.substr(end + 1);
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) continue;
    const std::string_view name = line.substr(0, colon);
    if (name != "VmHWM" && name != "VmRSS" && name != "VmData" && name != "VmStk" && name != "VmPeak" &&
        name != "VmPTE") {
      continue;
    }
    std::uint64_t bytes = 0;
    if (!ParseKilobytes(line.substr(colon + 1), bytes)) return false;
    fields[name] = bytes;
  }
  for (const std::string_view required : {"VmHWM", "VmRSS", "VmData", "VmPeak"}) {
    if (!fields.contains(required)) return false;
  }
  counters.peakWorkingSetSize = fields["VmHWM"];
  counters.workingSetSize = fields["VmRSS"];
  counters.quotaPeakPagedPoolUsage = 0;
  counters.quotaPagedPoolUsage = 0;
  counters.quotaPeakNonPagedPoolUsage = fields["VmPTE"];
  counters.quotaNonPagedPoolUsage = fields["VmPTE"];
  counters.pagefileUsage = fields["VmData"] + fields["VmStk"];
  counters.peakPagefileUsage = fields["VmPeak"];
  return true;
}

int ReadMemoryCounters(MemoryCounters& counters) {
  std::string status;
  int error = 0;
  // The status file is about 1.5 KiB; 64 KiB leaves room for any kernel's additions.
  if (!ReadSmallFile("/proc/self/status", std::size_t{64} * 1024, status, error)) return error;
  rusage usage{};
  if (::getrusage(RUSAGE_SELF, &usage) != 0) return errno;
  MemoryCounters read;
  if (!ParseProcessStatus(status, read)) return ENODATA;
  read.pageFaultCount =
      static_cast<std::uint64_t>(usage.ru_minflt) + static_cast<std::uint64_t>(usage.ru_majflt);
  counters = read;
  return 0;
}

int CurrentUserAccount(UserAccount& account) {
  const long hint = ::sysconf(_SC_GETPW_R_SIZE_MAX);
  std::vector<char> buffer(static_cast<std::size_t>(hint > 0 ? hint : 16384));
  passwd entry{};
  passwd* found = nullptr;
  int error = 0;
  while ((error = ::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found)) == ERANGE &&
         buffer.size() < (std::size_t{1} << 24)) {
    buffer.resize(buffer.size() * 2);
  }
  // These are the ways implementations say "no such user" besides a null result.
  if (error == ENOENT || error == ESRCH || error == EBADF || error == EPERM) return ENOENT;
  if (error != 0) return error;
  if (found == nullptr) return ENOENT;
  account.name = found->pw_name != nullptr ? found->pw_name : "";
  char login[LOGIN_NAME_MAX + 1] = {};
  account.loginName = ::getlogin_r(login, sizeof login) == 0 ? login : "";
  return 0;
}

std::vector<std::string> ScalableFontFamilies() {
  const PatternPtr pattern(FcPatternCreate());
  const ObjectSetPtr objects(FcObjectSetCreate());
  if (!pattern || !objects || FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue) == FcFalse ||
      FcObjectSetAdd(objects.get(), FC_FAMILY) == FcFalse) {
    return {};
  }
  // A configuration of our own, destroyed after the query: fontconfig's process-wide one
  // would stay loaded for the rest of the process (and belongs to the host's toolkit).
  const ConfigPtr config(FcInitLoadConfigAndFonts());
  if (!config) return {};
  const FontSetPtr fonts(FcFontList(config.get(), pattern.get(), objects.get()));
  if (!fonts) return {};
  std::set<std::string> families;
  for (int i = 0; i < fonts->nfont; ++i) {
    FcChar8* family = nullptr;
    if (FcPatternGetString(fonts->fonts[i], FC_FAMILY, 0, &family) == FcResultMatch && family != nullptr &&
        family[0] != '\0') {
      families.emplace(reinterpret_cast<const char*>(family));
    }
  }
  return {families.begin(), families.end()};
}

bool IsApplicationRegisteredFor(std::string_view mimeType) {
  if (mimeType.empty()) return false;
  const std::vector<fs::path> applicationFolders = ApplicationFolders();

  Associations associations;
  if (const std::string config = UserConfigFolder(); !config.empty()) {
    ReadMimeAppsList(fs::path(config) / "mimeapps.list", mimeType, associations);
  }
  for (const fs::path& folder : FolderList("XDG_CONFIG_DIRS", "/etc/xdg")) {
    ReadMimeAppsList(folder / "mimeapps.list", mimeType, associations);
  }
  for (const fs::path& folder : applicationFolders) {
    ReadMimeAppsList(folder / "mimeapps.list", mimeType, associations);
  }

  std::set<std::string> seen;
  for (const fs::path& folder : applicationFolders) {
    std::error_code error;
    fs::recursive_directory_iterator it(folder, fs::directory_options::skip_permission_denied, error);
    for (; !error && it != fs::recursive_directory_iterator(); it.increment(error)) {
      const fs::path& path = it->path();
      std::error_code kindError;
      if (path.extension() != ".desktop" || !it->is_regular_file(kindError)) continue;
      const std::string id = DesktopFileId(path.lexically_relative(folder));
      // The first folder holding an id decides for it, hidden or not.
      if (!seen.insert(id).second) continue;
      const DesktopEntry entry = ReadDesktopEntry(path, mimeType);
      if (!entry.application || entry.hidden) continue;
      if (associations.named.contains(id)) return true;
      if (entry.listsType && !associations.removed.contains(id)) return true;
    }
  }
  return false;
}

bool IsProgramOnPath(std::string_view name) {
  if (name.empty() || name.find('/') != std::string_view::npos) return false;
  for (const fs::path& folder : FolderList("PATH", "/bin:/usr/bin")) {
    const fs::path candidate = folder / name;
    struct stat st {};
    if (::stat(candidate.c_str(), &st) == 0 && S_ISREG(st.st_mode) &&
        ::access(candidate.c_str(), X_OK) == 0) {
      return true;
    }
  }
  return false;
}

}  // namespace corlith::platform
