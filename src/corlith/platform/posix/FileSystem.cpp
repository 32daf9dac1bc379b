#include <corlith/platform/FileSystem.h>

#include <corlith/platform/Path.h>
#include <corlith/platform/posix/ReadFully.h>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

namespace corlith::platform {

namespace {

// Blocks of one comparison read; large enough that system calls do not dominate.
constexpr std::size_t kCompareBlock = std::size_t{1} << 20;

// How many folder handles a tree removal keeps open at once: beyond this depth the
// oldest are closed and found again through ".." on the way back up, so a tree of any
// depth fits in a process's descriptor limit.
constexpr std::size_t kHeldFolders = 32;

class UniqueFd {
 public:
  UniqueFd() = default;
  explicit UniqueFd(int fd) : m_fd(fd) {}
  UniqueFd(UniqueFd&& other) noexcept : m_fd(std::exchange(other.m_fd, -1)) {}
  UniqueFd& operator=(UniqueFd&& other) noexcept {
    if (this != &other) Reset(std::exchange(other.m_fd, -1));
    return *this;
  }
  UniqueFd(const UniqueFd&) = delete;
  UniqueFd& operator=(const UniqueFd&) = delete;
  ~UniqueFd() { Reset(); }

  int Get() const { return m_fd; }
  bool IsOpen() const { return m_fd >= 0; }
  void Reset(int fd = -1) {
    if (m_fd >= 0) ::close(m_fd);
    m_fd = fd;
  }

 private:
  int m_fd = -1;
};

struct DirCloser {
  void operator()(DIR* dir) const { ::closedir(dir); }
};
using UniqueDir = std::unique_ptr<DIR, DirCloser>;

bool IsDotOrDotDot(const char* name) {
  return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

int OpenFolderAt(int at, const char* name) {
  int fd;
  do {
    fd = ::openat(at, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  } while (fd < 0 && errno == EINTR);
  return fd;
}

// One folder on the way down a tree being removed.
struct RemovalFrame {
  UniqueFd fd;                          ///< closed while the frame is far above the current one
  std::string name;                     ///< the name in its parent
  std::vector<std::string> subfolders;  ///< still to be removed
  dev_t device = 0;                     ///< to recognise the folder when it is reopened
  ino_t inode = 0;
};

// Unlinks everything in the frame's folder but its sub-folders, which it collects.
int ClearFolderFiles(RemovalFrame& frame) {
  const int scanFd = ::dup(frame.fd.Get());
  if (scanFd < 0) return errno;
  UniqueDir dir(::fdopendir(scanFd));
  if (!dir) {
    const int error = errno;
    ::close(scanFd);
    return error;
  }
  const int at = frame.fd.Get();
  for (;;) {
    errno = 0;
    const dirent* entry = ::readdir(dir.get());
    if (entry == nullptr) return errno;
    if (IsDotOrDotDot(entry->d_name)) continue;
    bool isFolder = entry->d_type == DT_DIR;
    if (entry->d_type == DT_UNKNOWN) {
      struct stat st {};
      if (::fstatat(at, entry->d_name, &st, AT_SYMLINK_NOFOLLOW) != 0) {
        if (errno == ENOENT) continue;
        return errno;
      }
      isFolder = S_ISDIR(st.st_mode);
    }
    if (isFolder) {
      frame.subfolders.emplace_back(entry->d_name);
    } else if (::unlinkat(at, entry->d_name, 0) != 0 && errno != ENOENT) {
      return errno;
    }
  }
}

int EnterFolder(RemovalFrame& frame) {
  struct stat st {};
  if (::fstat(frame.fd.Get(), &st) != 0) return errno;
  frame.device = st.st_dev;
  frame.inode = st.st_ino;
  return ClearFolderFiles(frame);
}

// Removes what is inside the folder open as `top`, depth first, without ever holding
// more than kHeldFolders handles or building a path longer than one name.
int RemoveFolderContents(UniqueFd top) {
  std::vector<RemovalFrame> stack;
  stack.push_back(RemovalFrame{std::move(top), {}, {}, 0, 0});
  if (const int error = EnterFolder(stack.back()); error != 0) return error;

  while (!stack.empty()) {
    RemovalFrame& frame = stack.back();
    if (!frame.subfolders.empty()) {
      std::string name = std::move(frame.subfolders.back());
      frame.subfolders.pop_back();
      UniqueFd child(OpenFolderAt(frame.fd.Get(), name.c_str()));
      if (!child.IsOpen()) {
        if (errno == ENOENT) continue;
        // Replaced by a file or a link since it was listed: removed as what it is now.
        if ((errno == ENOTDIR || errno == ELOOP) && ::unlinkat(frame.fd.Get(), name.c_str(), 0) == 0)
          continue;
        return errno;
      }
      stack.push_back(RemovalFrame{std::move(child), std::move(name), {}, 0, 0});
      if (stack.size() > kHeldFolders) stack[stack.size() - 1 - kHeldFolders].fd.Reset();
      if (const int error = EnterFolder(stack.back()); error != 0) return error;
      continue;
    }
    if (stack.size() == 1) return 0;

    RemovalFrame& parent = stack[stack.size() - 2];
    if (!parent.fd.IsOpen()) {
      UniqueFd up(OpenFolderAt(frame.fd.Get(), ".."));
      if (!up.IsOpen()) return errno;
      struct stat st {};
      if (::fstat(up.Get(), &st) != 0) return errno;
      // The tree was moved while it was being removed: nothing outside it is touched.
      if (st.st_dev != parent.device || st.st_ino != parent.inode) return EBUSY;
      parent.fd = std::move(up);
    }
    const std::string name = std::move(frame.name);
    stack.pop_back();
    if (::unlinkat(parent.fd.Get(), name.c_str(), AT_REMOVEDIR) != 0 && errno != ENOENT) return errno;
  }
  return 0;
}

int OpenForReading(const std::string& path, UniqueFd& fd, struct stat& st) {
  int raw;
  do {
    raw = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  } while (raw < 0 && errno == EINTR);
  if (raw < 0) return errno;
  fd.Reset(raw);
  if (::fstat(raw, &st) != 0) return errno;
  if (S_ISDIR(st.st_mode)) return EISDIR;
  return 0;
}

// The path as the system takes it: native separators. A NUL byte would cut the text
// short, and the system would act on another path: such a path names nothing.
bool ToSystemPath(std::string_view path, std::string& native) {
  if (path.find('\0') != std::string_view::npos) return false;
  native = ToNativeSeparators(path);
  return true;
}

}  // namespace

int QueryFileFacts(std::string_view path, FileFacts& facts) {
  std::string native;
  if (!ToSystemPath(path, native)) return EINVAL;
  struct statx sx {};
  if (::statx(AT_FDCWD, native.c_str(), AT_STATX_SYNC_AS_STAT, STATX_BASIC_STATS | STATX_BTIME, &sx) != 0) {
    return errno;
  }
  FileFacts result;
  const mode_t mode = sx.stx_mode;
  result.kind = S_ISREG(mode) ? FileKind::Regular : S_ISDIR(mode) ? FileKind::Directory : FileKind::Other;
  result.size = sx.stx_size;
  result.mode = mode;
  result.accessTime = sx.stx_atime.tv_sec;
  result.modifiedTime = sx.stx_mtime.tv_sec;
  result.changeTime = sx.stx_ctime.tv_sec;
  result.creationTime = (sx.stx_mask & STATX_BTIME) != 0 ? sx.stx_btime.tv_sec : sx.stx_ctime.tv_sec;
  result.device = makedev(sx.stx_dev_major, sx.stx_dev_minor);
  result.inode = sx.stx_ino;
  result.links = sx.stx_nlink;
  result.readOnly = (mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
  facts = result;
  return 0;
}

int SetReadOnly(std::string_view path, bool readOnly) {
  std::string native;
  if (!ToSystemPath(path, native)) return EINVAL;
  struct stat st {};
  if (::stat(native.c_str(), &st) != 0) return errno;
  mode_t mode = st.st_mode & 07777;
  mode = readOnly ? (mode & ~static_cast<mode_t>(S_IWUSR | S_IWGRP | S_IWOTH)) : (mode | S_IWUSR);
  if (mode == (st.st_mode & 07777)) return 0;
  return ::chmod(native.c_str(), mode) == 0 ? 0 : errno;
}

int SetHidden(std::string_view path) {
  std::string native;
  if (!ToSystemPath(path, native)) return EINVAL;
  struct stat st {};
  return ::stat(native.c_str(), &st) == 0 ? 0 : errno;
}

bool IsWritable(std::string_view path) {
  std::string native;
  return ToSystemPath(path, native) && ::access(native.c_str(), W_OK) == 0;
}

int MakeFolder(std::string_view path) {
  std::string native;
  if (!ToSystemPath(path, native)) return EINVAL;
  return ::mkdir(native.c_str(), 0777) == 0 ? 0 : errno;
}

int RenamePath(std::string_view from, std::string_view to) {
  std::string nativeFrom;
  std::string nativeTo;
  if (!ToSystemPath(from, nativeFrom) || !ToSystemPath(to, nativeTo)) return EINVAL;
  return ::rename(nativeFrom.c_str(), nativeTo.c_str()) == 0 ? 0 : errno;
}

int RemoveFilePath(std::string_view path) {
  std::string native;
  if (!ToSystemPath(path, native)) return EINVAL;
  return ::unlink(native.c_str()) == 0 ? 0 : errno;
}

int RemoveTree(std::string_view path) {
  std::string native;
  if (!ToSystemPath(path, native)) return EINVAL;
  // A closing separator would make the system follow a link at the end of the path.
  while (native.size() > 1 && native.back() == kNativeSeparator) native.pop_back();
  const std::size_t slash = native.rfind(kNativeSeparator);
  const std::string_view last =
      slash == std::string::npos ? std::string_view(native) : std::string_view(native).substr(slash + 1);
  if (native == "/" || last == "." || last == "..") return EINVAL;

  struct stat st {};
  if (::fstatat(AT_FDCWD, native.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) return errno;
  if (!S_ISDIR(st.st_mode)) return ::unlink(native.c_str()) == 0 ? 0 : errno;

  UniqueFd top(OpenFolderAt(AT_FDCWD, native.c_str()));
  if (!top.IsOpen()) return errno;
  if (const int error = RemoveFolderContents(std::move(top)); error != 0) return error;
  return ::rmdir(native.c_str()) == 0 ? 0 : errno;
}

int ListFolder(std::string_view folder, const std::function<bool(const ListingEntry&)>& visit) {
  std::string native;
  if (!ToSystemPath(folder, native)) return EINVAL;
  UniqueDir dir(::opendir(native.c_str()));
  if (!dir) return errno;
  const int at = ::dirfd(dir.get());
  for (;;) {
    errno = 0;
    const dirent* entry = ::readdir(dir.get());
    if (entry == nullptr) return errno;
    if (IsDotOrDotDot(entry->d_name)) continue;
    ListingEntry listed{entry->d_name, entry->d_type == DT_DIR, entry->d_type == DT_LNK};
    if (entry->d_type == DT_UNKNOWN) {
      struct stat st {};
      // Gone since the folder was read: nothing to report.
      if (::fstatat(at, entry->d_name, &st, AT_SYMLINK_NOFOLLOW) != 0) continue;
      listed.isDirectory = S_ISDIR(st.st_mode);
      listed.isSymbolicLink = S_ISLNK(st.st_mode);
    }
    if (listed.isSymbolicLink) {
      struct stat target {};
      listed.isDirectory = ::fstatat(at, entry->d_name, &target, 0) == 0 && S_ISDIR(target.st_mode);
    }
    if (!visit(listed)) return 0;
  }
}

int CompareFileContents(std::string_view a, std::string_view b, bool& equal) {
  UniqueFd fdA;
  UniqueFd fdB;
  struct stat stA {};
  struct stat stB {};
  std::string nativeA;
  std::string nativeB;
  if (!ToSystemPath(a, nativeA) || !ToSystemPath(b, nativeB)) return EINVAL;
  if (const int error = OpenForReading(nativeA, fdA, stA); error != 0) return error;
  if (const int error = OpenForReading(nativeB, fdB, stB); error != 0) return error;
  if (stA.st_dev == stB.st_dev && stA.st_ino == stB.st_ino) {
    equal = true;
    return 0;
  }
  if (S_ISREG(stA.st_mode) && S_ISREG(stB.st_mode) && stA.st_size != stB.st_size) {
    equal = false;
    return 0;
  }
  ::posix_fadvise(fdA.Get(), 0, 0, POSIX_FADV_SEQUENTIAL);
  ::posix_fadvise(fdB.Get(), 0, 0, POSIX_FADV_SEQUENTIAL);

  // Small files need no full-size blocks; a pipe or device has no size to go by.
  std::size_t block = kCompareBlock;
  if (S_ISREG(stA.st_mode))
    block = std::clamp<std::size_t>(static_cast<std::size_t>(stA.st_size), 1, kCompareBlock);
  const auto bufferA = std::make_unique_for_overwrite<char[]>(block);
  const auto bufferB = std::make_unique_for_overwrite<char[]>(block);
  for (;;) {
    std::size_t readA = 0;
    std::size_t readB = 0;
    if (const int error = posix::ReadFully(fdA.Get(), bufferA.get(), block, readA); error != 0) return error;
    if (const int error = posix::ReadFully(fdB.Get(), bufferB.get(), block, readB); error != 0) return error;
    if (readA != readB || std::memcmp(bufferA.get(), bufferB.get(), readA) != 0) {
      equal = false;
      return 0;
    }
    if (readA < block) {
      equal = true;
      return 0;
    }
  }
}

}  // namespace corlith::platform
