#include <corlith/platform/Trace.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace corlith::platform {

int AppendToFile(std::string_view path, std::string_view bytes) {
  if (path.find('\0') != std::string_view::npos) return EINVAL;
  const std::string name(path);
  int fd;
  do {
    fd = ::open(name.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
  } while (fd < 0 && errno == EINTR);
  if (fd < 0) return errno;
  int error = 0;
  if (!bytes.empty()) {
    ssize_t n;
    do {
      n = ::write(fd, bytes.data(), bytes.size());
    } while (n < 0 && errno == EINTR);
    if (n < 0) {
      error = errno;
    } else if (static_cast<std::size_t>(n) != bytes.size()) {
      error = ENOSPC;
    }
  }
  if (::close(fd) != 0 && error == 0 && errno != EINTR) error = errno;
  return error;
}

bool LocalTime(std::time_t time, std::tm& local) { return ::localtime_r(&time, &local) != nullptr; }

}  // namespace corlith::platform
