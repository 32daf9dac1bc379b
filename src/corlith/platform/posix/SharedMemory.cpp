#include <corlith/platform/SharedMemory.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <utility>

namespace corlith::platform {

namespace {

// The header keeps the data aligned for any scalar and holds the readiness word,
// which the creator sets last so that nobody reads half-initialised data.
constexpr std::size_t kHeader = 64;
constexpr std::uint32_t kReady = 0x52454459;  // arbitrary, unlikely in a stray segment
constexpr int kWaitSteps = 2000;              // of one millisecond

void SleepOneMillisecond() {
  timespec ts{0, 1'000'000};
  nanosleep(&ts, nullptr);
}

std::atomic_ref<std::uint32_t> ReadyWord(void* base) {
  return std::atomic_ref<std::uint32_t>(*static_cast<std::uint32_t*>(base));
}

class Fd {
 public:
  explicit Fd(int fd) : m_fd(fd) {}
  ~Fd() {
    if (m_fd >= 0) ::close(m_fd);
  }
  Fd(const Fd&) = delete;
  Fd& operator=(const Fd&) = delete;
  int get() const { return m_fd; }

 private:
  int m_fd;
};

}  // namespace

SharedMemory::SharedMemory(SharedMemory&& other) noexcept
    : m_base(std::exchange(other.m_base, nullptr)),
      m_mappedSize(std::exchange(other.m_mappedSize, 0)),
      m_size(std::exchange(other.m_size, 0)) {}

SharedMemory& SharedMemory::operator=(SharedMemory&& other) noexcept {
  if (this != &other) {
    Close();
    m_base = std::exchange(other.m_base, nullptr);
    m_mappedSize = std::exchange(other.m_mappedSize, 0);
    m_size = std::exchange(other.m_size, 0);
  }
  return *this;
}

SharedMemory::~SharedMemory() { Close(); }

void* SharedMemory::Data() const { return m_base ? static_cast<char*>(m_base) + kHeader : nullptr; }

void SharedMemory::Close() {
  if (m_base) ::munmap(m_base, m_mappedSize);
  m_base = nullptr;
  m_mappedSize = 0;
  m_size = 0;
}

int SharedMemory::Open(const std::string& name, std::size_t size,
                       const std::function<void(void*)>& initialise) {
  int error = OpenOnce(name, size, initialise);
  if (error == ETIMEDOUT) {
    // A creator that has not finished after two seconds died on the way: its segment
    // would otherwise stand unready until the machine restarts. Take the name over.
    ::shm_unlink(name.c_str());
    error = OpenOnce(name, size, initialise);
  }
  return error;
}

int SharedMemory::OpenOnce(const std::string& name, std::size_t size,
                           const std::function<void(void*)>& initialise) {
  Close();
  const std::size_t total = kHeader + size;
  bool creator = true;
  int raw = ::shm_open(name.c_str(), O_RDWR | O_CREAT | O_EXCL, 0600);
  if (raw < 0 && errno == EEXIST) {
    creator = false;
    raw = ::shm_open(name.c_str(), O_RDWR, 0600);
  }
  if (raw < 0) return errno;
  Fd fd(raw);

  struct stat st {};
  if (::fstat(fd.get(), &st) != 0) return errno;
  if (st.st_uid != ::geteuid()) return EACCES;

  if (creator) {
    if (::ftruncate(fd.get(), static_cast<off_t>(total)) != 0) {
      const int error = errno;
      ::shm_unlink(name.c_str());
      return error;
    }
  } else {
    // The creator may not have sized the segment yet.
    int steps = 0;
    while (static_cast<std::size_t>(st.st_size) < total) {
      if (++steps > kWaitSteps) return ETIMEDOUT;
      SleepOneMillisecond();
      if (::fstat(fd.get(), &st) != 0) return errno;
    }
  }

  void* base = ::mmap(nullptr, total, PROT_READ | PROT_WRITE, MAP_SHARED, fd.get(), 0);
  if (base == MAP_FAILED) return errno;

  if (creator) {
    if (initialise) initialise(static_cast<char*>(base) + kHeader);
    ReadyWord(base).store(kReady, std::memory_order_release);
  } else {
    int steps = 0;
    while (ReadyWord(base).load(std::memory_order_acquire) != kReady) {
      if (++steps > kWaitSteps) {
        ::munmap(base, total);
        return ETIMEDOUT;
      }
      SleepOneMillisecond();
    }
  }
  m_base = base;
  m_mappedSize = total;
  m_size = size;
  return 0;
}

int RemoveSharedMemory(const std::string& name) { return ::shm_unlink(name.c_str()) == 0 ? 0 : errno; }

std::string PerUserSharedMemoryName(std::string_view base) {
  // Built by appending: GCC 12 warns falsely (-Wrestrict) on a chain of operator+.
  std::string name(1, '/');
  name.append(base);
  name.push_back('-');
  name.append(std::to_string(::geteuid()));
  return name;
}

}  // namespace corlith::platform
