// KTUtility: existence and kind, attributes, sizes and times, and the copy, rename and
// delete operations (the background copies and the deletion thread included).
#include <corlith/environment/LPath.h>
#include <corlith/environment/Utility.h>

#include <corlith/platform/File.h>
#include <corlith/platform/FileSystem.h>
#include <corlith/platform/Path.h>
#include <corlith/platform/Process.h>

#include <chrono>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace {

namespace platform = corlith::platform;

constexpr std::uint16_t kDirectoryBit = 0x4000;

std::string_view WithoutTrailingSeparators(std::string_view text) {
  while (!text.empty() && platform::IsSeparator(text.back())) text.remove_suffix(1);
  return text;
}

// The path the status call is asked about: trailing separators dropped. A path of
// separators only is POSIX's root, as a bare drive is its root on the original.
std::string_view StatusPath(const CString& path) {
  const std::string_view stripped = WithoutTrailingSeparators(path.view());
  if (stripped.empty() && !path.IsEmpty()) return path.view().substr(0, 1);
  return stripped;
}

// A path with a NUL byte names nothing: the system would read only the text before it,
// which is another path. Destructive operations refuse such paths outright.
bool HasNul(const CString& path) { return path.view().find('\0') != std::string_view::npos; }

bool RegularFacts(const CString& path, platform::FileFacts& facts) {
  if (HasNul(path)) return false;
  return platform::QueryFileFacts(path.view(), facts) == 0 && facts.kind == platform::FileKind::Regular;
}

// Copies started by CopyDirectoryContents that may still run. A Process that goes out
// of scope ends its child, so each one is kept here until it has exited; finished ones
// are reaped whenever another copy starts. Deliberately never destroyed: copies still
// running when the host exits go on, as the original's detached copy process did.
class BackgroundCopies {
 public:
  static BackgroundCopies& Instance() {
    static BackgroundCopies* const copies = new BackgroundCopies();
    return *copies;
  }

  void Add(platform::Process process) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::erase_if(m_running, [](platform::Process& p) { return p.WaitFor(std::chrono::milliseconds(0)); });
    m_running.push_back(std::move(process));
  }

 private:
  BackgroundCopies() = default;

  std::mutex m_mutex;
  std::vector<platform::Process> m_running;
};

}  // namespace

// --- the deletion thread's handle ---------------------------------------------------

struct corlith::KTThreadHandle::State {
  std::mutex mutex;
  std::condition_variable ended;
  bool finished = false;

  void Finish() {
    {
      const std::lock_guard<std::mutex> lock(mutex);
      finished = true;
    }
    ended.notify_all();
  }
};

corlith::KTThreadHandle::~KTThreadHandle() = default;

void corlith::KTThreadHandle::Wait() const {
  if (!m_state) return;
  std::unique_lock<std::mutex> lock(m_state->mutex);
  m_state->ended.wait(lock, [this] { return m_state->finished; });
}

bool corlith::KTThreadHandle::WaitFor(std::chrono::milliseconds timeout) const {
  if (!m_state) return true;
  std::unique_lock<std::mutex> lock(m_state->mutex);
  return m_state->ended.wait_for(lock, timeout, [this] { return m_state->finished; });
}

// --- existence and kind -------------------------------------------------------------

bool KTUtility::IsDir(const CString& path) {
  if (!DoesFileExist(path, "KTUtility", __LINE__)) return false;
  KTStat64 stat;
  return GetStatInfo(path, stat) == 0 && (stat.st_mode & kDirectoryBit) != 0;
}

bool KTUtility::IsFile(const CString& path) {
  if (!DoesFileExist(path, "KTUtility", __LINE__)) return false;
  // Gone since the existence check: not a file either.
  KTStat64 stat;
  return GetStatInfo(path, stat) == 0 && (stat.st_mode & kDirectoryBit) == 0;
}

int KTUtility::GetStatInfo(const CString& path, KTStat64& stat) {
  stat = KTStat64{};
  const std::string_view target = StatusPath(path);
  platform::FileFacts facts;
  if (target.empty() || HasNul(path) || platform::QueryFileFacts(target, facts) != 0) return -1;
  // The record's fields are as narrow as the original runtime's; the values are cut to fit.
  stat.st_dev = static_cast<std::uint32_t>(facts.device);
  stat.st_ino = facts.inode;
  stat.st_mode = static_cast<std::uint16_t>(facts.mode);
  stat.st_nlink = static_cast<std::int16_t>(facts.links);
  stat.st_rdev = stat.st_dev;
  stat.st_size = static_cast<std::int64_t>(facts.size);
  stat.st_atime64 = facts.accessTime;
  stat.st_mtime64 = facts.modifiedTime;
  stat.st_ctime64 = facts.creationTime;
  return 0;
}

int KTUtility::IsAbsolutePath(const CString& path) { return CLPath::IsAbsolutePath(path); }

bool KTUtility::IsPureFileName(const CString& path) {
  for (const char c : path.view()) {
    if (platform::IsSeparator(c)) return false;
  }
  return true;
}

int KTUtility::IsSameFile(const CString& pathA, const CString& pathB) {
  platform::FileFacts a;
  platform::FileFacts b;
  // Only regular files are compared: opening a pipe to read it could block for ever.
  if (!RegularFacts(pathA, a) || !RegularFacts(pathB, b)) return 0;
  if (static_cast<DWORD>(a.size) != static_cast<DWORD>(b.size)) return 0;
  bool equal = false;
  if (platform::CompareFileContents(pathA.view(), pathB.view(), equal) != 0) return 0;
  return equal ? 1 : 0;
}

// --- attributes, sizes and times ----------------------------------------------------

bool KTUtility::IsReadOnlyFile(const CString& path) {
  platform::FileFacts facts;
  if (HasNul(path) || platform::QueryFileFacts(path.view(), facts) != 0) return false;
  return facts.readOnly;
}

void KTUtility::RemoveFileAttribute_ReadOnly(const CString& path) {
  if (IsReadOnlyFile(path)) platform::SetReadOnly(path.view(), false);
}

void KTUtility::ChangeDirAttributeToHidden(const CString& path) {
  if (DoesFileExist(path, "KTUtility", __LINE__)) platform::SetHidden(path.view());
}

DWORD KTUtility::GetFileSize(const CString& path) {
  platform::FileFacts facts;
  if (!RegularFacts(path, facts)) return 0;
  platform::FileHandle file;
  if (file.Open(platform::ToNativeSeparators(path.view()), {}) != 0) return 0;
  std::uint64_t size = 0;
  if (file.GetSize(size) != 0) return 0;
  return static_cast<DWORD>(size);
}

DWORD KTUtility::GetFileSizeInfo(const CString& path) {
  platform::FileFacts facts;
  if (HasNul(path) || platform::QueryFileFacts(path.view(), facts) != 0) return 0xFFFFFFFF;
  // The original's attribute query gives a folder the size 0.
  if (facts.kind == platform::FileKind::Directory) return 0;
  return static_cast<DWORD>(facts.size);
}

LONGLONG KTUtility::GetFileCreationTime(const CString& path) {
  KTStat64 stat;
  if (GetStatInfo(path, stat) != 0) return 0;
  return stat.st_ctime64;
}

LONGLONG KTUtility::GetFileModifiedTime(const CString& path) {
  KTStat64 stat;
  if (GetStatInfo(path, stat) != 0) return 0;
  return stat.st_mtime64;
}

// --- copy, rename, delete -----------------------------------------------------------

void KTUtility::CopyDirectoryContents(const CString& src, const CString& dst) { StartCopy(src, dst, false); }

void KTUtility::WaitCopyDirectoryContents(const CString& src, const CString& dst) {
  StartCopy(src, dst, true);
}

void KTUtility::StartCopy(const CString& src, const CString& dst, bool wait) {
  if (HasNul(src) || HasNul(dst) || dst.IsEmpty()) return;
  if (!DoesFileExist(src, "KTUtility", __LINE__)) return;
  if (!DoesFileExist(dst, "KTUtility", __LINE__)) ForceDirectories(dst);

  // "SRC/." copies the folder's contents, hidden entries included, into DST rather than
  // the folder itself; a file given as the source is copied into DST as it is.
  std::string source = platform::ToNativeSeparators(src.view());
  // Asked without IsDir: the trace log holds one entry per check the copy makes, as before.
  KTStat64 stat;
  if (GetStatInfo(src, stat) == 0 && (stat.st_mode & kDirectoryBit) != 0) {
    std::string_view folder = WithoutTrailingSeparators(source);
    source = std::string(folder) + platform::kNativeSeparator + '.';
  }
  platform::SpawnOptions options;
  options.program = "cp";
  // -a: recursive, links copied as links, modes and times kept (xcopy /E /I /H /K);
  // -f: a target that cannot be opened for writing is removed and written again (/R /Y).
  options.arguments = {"-a", "-f", "--", std::move(source), platform::ToNativeSeparators(dst.view())};
  platform::Process process;
  if (platform::Spawn(options, process) != 0) return;
  if (wait) {
    process.Wait();
    return;
  }
  try {
    BackgroundCopies::Instance().Add(std::move(process));
  } catch (const std::exception&) {
    // No room to keep the handle: the copy is waited for rather than ended.
    process.Wait();
  }
}

int KTUtility::RenameDirectory(const CString& oldPath, const CString& newPath) {
  if (HasNul(oldPath) || HasNul(newPath)) return 0;
  return platform::RenamePath(oldPath.view(), newPath.view()) == 0 ? 1 : 0;
}

void KTUtility::DeleteDirectory(const CString& path) {
  if (HasNul(path) || !DoesFileExist(path, "KTUtility", __LINE__)) return;
  const std::string_view target = WithoutTrailingSeparators(path.view());
  // A path of separators only is the root: never removed.
  if (target.empty()) return;
  platform::RemoveTree(target);
}

corlith::KTThreadHandle KTUtility::DeleteDirectoryInThread(const CString& path) {
  auto state = std::make_shared<corlith::KTThreadHandle::State>();
  try {
    std::thread([this, path, state] {
      try {
        DeleteDirectory(path);
      } catch (const std::exception&) {
        // Out of memory on the way: what was removed stays removed; the handle still ends.
      }
      state->Finish();
    }).detach();
  } catch (const std::exception&) {
    // No thread could be started: the deletion runs here, and the handle has ended.
    DeleteDirectory(path);
    state->Finish();
  }
  return corlith::KTThreadHandle(std::move(state));
}
