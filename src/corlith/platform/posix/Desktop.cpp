#include <corlith/platform/Desktop.h>
#include <corlith/platform/Process.h>

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <memory>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace corlith::platform {
namespace {

bool IsAbsolute(const char* text) { return text != nullptr && text[0] == '/'; }

std::string HomeFolder() {
  const char* home = std::getenv("HOME");
  if (IsAbsolute(home)) return home;
  long size = ::sysconf(_SC_GETPW_R_SIZE_MAX);
  std::vector<char> buffer(static_cast<std::size_t>(size > 0 ? size : 16384));
  passwd entry{};
  passwd* found = nullptr;
  while (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) == ERANGE) {
    buffer.resize(buffer.size() * 2);
  }
  if (found != nullptr && IsAbsolute(found->pw_dir)) return found->pw_dir;
  return {};
}

// mkdir -p with mode 0700 for the folders it makes; existing folders stay as they are.
int MakeFolders(const std::filesystem::path& folder) {
  if (folder.empty()) return 0;
  std::filesystem::path partial;
  for (const auto& part : folder) {
    partial /= part;
    if (::mkdir(partial.c_str(), 0700) == 0) continue;
    const int error = errno;
    struct stat st {};
    if (error == EEXIST && ::stat(partial.c_str(), &st) == 0) {
      if (S_ISDIR(st.st_mode)) continue;
      return ENOTDIR;
    }
    if (error == EEXIST) return ENOTDIR;
    // A folder above ours that we may not create but that exists (EACCES on "/home")
    // is fine; a later level fails with its own error when it really is a problem.
    if ((error == EACCES || error == EPERM || error == EROFS) && ::stat(partial.c_str(), &st) == 0 &&
        S_ISDIR(st.st_mode)) {
      continue;
    }
    return error;
  }
  return 0;
}

int WriteAll(int fd, std::string_view bytes) {
  const char* data = bytes.data();
  std::size_t left = bytes.size();
  while (left > 0) {
    const ssize_t written = ::write(fd, data, left);
    if (written < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    data += written;
    left -= static_cast<std::size_t>(written);
  }
  return 0;
}

int Close(int fd) {
  // POSIX leaves the descriptor's state after EINTR unspecified; Linux always closes it,
  // so it is never retried.
  return ::close(fd) == 0 || errno == EINTR ? 0 : errno;
}

}  // namespace

std::string UserConfigFolder() {
  const char* configured = std::getenv("XDG_CONFIG_HOME");
  if (IsAbsolute(configured)) return configured;
  const std::string home = HomeFolder();
  if (home.empty()) return {};
  return home + (home.back() == '/' ? ".config" : "/.config");
}

int WriteFileAtomically(const std::filesystem::path& path, std::string_view bytes) {
  if (path.empty() || !path.has_filename()) return EINVAL;
  std::filesystem::path target = path;
  struct stat st {};
  if (::lstat(path.c_str(), &st) == 0 && S_ISLNK(st.st_mode)) {
    char resolved[PATH_MAX];
    if (::realpath(path.c_str(), resolved) != nullptr) target = resolved;
  }
  if (const int error = MakeFolders(target.parent_path())) return error;

  std::string temporary =
      (target.parent_path() / ("." + target.filename().string() + ".tmp-XXXXXX")).string();
  const int fd = ::mkostemp(temporary.data(), O_CLOEXEC);
  if (fd < 0) return errno;
  int error = 0;
  if (::stat(target.c_str(), &st) == 0 && S_ISREG(st.st_mode) && ::fchmod(fd, st.st_mode & 07777) != 0) {
    error = errno;
  }
  if (error == 0) error = WriteAll(fd, bytes);
  if (error == 0 && ::fsync(fd) != 0) error = errno;
  const int closeError = Close(fd);
  if (error == 0) error = closeError;
  if (error == 0 && ::rename(temporary.c_str(), target.c_str()) != 0) error = errno;
  if (error != 0) {
    ::unlink(temporary.c_str());
    return error;
  }
  // The rename is only durable once the folder's entry is on the disk too. The new
  // content is in place either way, so a failure here is not reported.
  const std::filesystem::path folder = target.has_parent_path() ? target.parent_path() : ".";
  const int folderFd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folderFd >= 0) {
    ::fsync(folderFd);
    Close(folderFd);
  }
  return 0;
}

int OpenWithDesktop(std::string_view target) {
  if (target.empty() || target.find('\0') != std::string_view::npos) return EINVAL;
  SpawnOptions options;
  options.program = "xdg-open";
  options.arguments.emplace_back(target.front() == '-' ? "./" + std::string(target) : std::string(target));
  Process process;
  if (const int error = Spawn(options, process)) return error;
  // xdg-open may run the application in the foreground and so last as long as it does:
  // it is waited for (and reaped) on a thread of its own, never by the caller.
  auto child = std::make_shared<Process>(std::move(process));
  try {
    std::thread([child] { child->Wait(); }).detach();
  } catch (const std::system_error&) {
    // No thread to spare: wait here rather than end xdg-open with its group.
    child->Wait();
  }
  return 0;
}

}  // namespace corlith::platform
