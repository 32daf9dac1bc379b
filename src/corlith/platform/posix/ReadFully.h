// Reading a descriptor until the request is met or the file ends, for the POSIX files of
// the platform layer alone.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <cstddef>

namespace corlith::platform::posix {

/// Reads up to `size` bytes, short only at the end of the file; EINTR is retried. Returns
/// 0 or the error number; `done` is what was read either way.
inline int ReadFully(int fd, void* buffer, std::size_t size, std::size_t& done) {
  done = 0;
  auto* out = static_cast<char*>(buffer);
  while (done < size) {
    const ssize_t n = ::read(fd, out + done, size - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    if (n == 0) break;
    done += static_cast<std::size_t>(n);
  }
  return 0;
}

}  // namespace corlith::platform::posix
