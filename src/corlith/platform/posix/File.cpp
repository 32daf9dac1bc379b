#include <corlith/platform/File.h>
#include <corlith/platform/posix/ReadFully.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <cstdio>

namespace corlith::platform {

FileErrorKind ClassifyOsError(long osError) {
  switch (osError) {
    case 0:
      return FileErrorKind::None;
    case ENOENT:
      return FileErrorKind::NotFound;
    case ENOTDIR:
    case ENAMETOOLONG:
    case ELOOP:
      return FileErrorKind::BadPath;
    case EMFILE:
    case ENFILE:
      return FileErrorKind::TooManyOpen;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
    case EEXIST:
      return FileErrorKind::AccessDenied;
    case EBADF:
      return FileErrorKind::InvalidFile;
    case ESPIPE:
    case EINVAL:
    case EOVERFLOW:
      return FileErrorKind::BadSeek;
    case EIO:
      return FileErrorKind::HardIo;
    case ETXTBSY:
    case EBUSY:
      return FileErrorKind::SharingViolation;
    case EDEADLK:
    case ENOLCK:
      return FileErrorKind::LockViolation;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return FileErrorKind::DiskFull;
    default:
      return FileErrorKind::Generic;
  }
}

FileHandle::FileHandle(FileHandle&& other) noexcept : m_fd(other.m_fd) { other.m_fd = -1; }

FileHandle& FileHandle::operator=(FileHandle&& other) noexcept {
  if (this != &other) {
    Close();
    m_fd = other.m_fd;
    other.m_fd = -1;
  }
  return *this;
}

FileHandle::~FileHandle() { Close(); }

int FileHandle::Open(const std::filesystem::path& path, const FileOpenOptions& options) {
  Close();
  int flags = options.access == FileAccess::Read    ? O_RDONLY
              : options.access == FileAccess::Write ? O_WRONLY
                                                    : O_RDWR;
  if (options.create) flags |= O_CREAT;
  if (options.create && options.truncate) flags |= O_TRUNC;
  if (options.create && options.exclusive) flags |= O_EXCL;
  if (!options.inherit) flags |= O_CLOEXEC;
  int fd;
  do {
    fd = ::open(path.c_str(), flags, 0666);
  } while (fd < 0 && errno == EINTR);
  if (fd < 0) return errno;
  // A folder opens read-only on POSIX; a file class has no use for it.
  struct stat st {};
  if (::fstat(fd, &st) == 0 && S_ISDIR(st.st_mode)) {
    ::close(fd);
    return EISDIR;
  }
  m_fd = fd;
  return 0;
}

int FileHandle::Close() {
  if (m_fd < 0) return 0;
  const int result = ::close(m_fd);
  m_fd = -1;
  return result == 0 ? 0 : errno;
}

int FileHandle::Read(void* buffer, std::size_t size, std::size_t& done) {
  done = 0;
  if (m_fd < 0) return EBADF;
  return posix::ReadFully(m_fd, buffer, size, done);
}

int FileHandle::Write(const void* buffer, std::size_t size) {
  if (m_fd < 0) return EBADF;
  const auto* in = static_cast<const char*>(buffer);
  while (size > 0) {
    const ssize_t n = ::write(m_fd, in, size);
    if (n < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    in += n;
    size -= static_cast<std::size_t>(n);
  }
  return 0;
}

int FileHandle::Seek(std::int64_t offset, SeekOrigin origin, std::uint64_t& newPosition) {
  if (m_fd < 0) return EBADF;
  const int whence = origin == SeekOrigin::Begin     ? SEEK_SET
                     : origin == SeekOrigin::Current ? SEEK_CUR
                                                     : SEEK_END;
  const off_t result = ::lseek(m_fd, static_cast<off_t>(offset), whence);
  if (result < 0) return errno;
  newPosition = static_cast<std::uint64_t>(result);
  return 0;
}

int FileHandle::GetSize(std::uint64_t& size) const {
  if (m_fd < 0) return EBADF;
  struct stat st {};
  if (::fstat(m_fd, &st) != 0) return errno;
  size = static_cast<std::uint64_t>(st.st_size);
  return 0;
}

int FileHandle::SetSize(std::uint64_t size) {
  if (m_fd < 0) return EBADF;
  return ::ftruncate(m_fd, static_cast<off_t>(size)) == 0 ? 0 : errno;
}

int FileHandle::Flush() {
  if (m_fd < 0) return EBADF;
  return ::fsync(m_fd) == 0 || errno == EINVAL ? 0 : errno;
}

int RemoveFile(const std::filesystem::path& path) { return ::unlink(path.c_str()) == 0 ? 0 : errno; }

int RenameFile(const std::filesystem::path& from, const std::filesystem::path& to) {
  return ::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

const char* TextLineEnd() { return "\n"; }

}  // namespace corlith::platform
