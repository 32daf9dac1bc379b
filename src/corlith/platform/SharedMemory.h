// Named memory shared between processes: a move-only mapping that unmaps itself, and
// the per-user naming rule. Opening handles the creation race: exactly one process
// creates and initialises a segment, every other one waits until it is ready.
// Every call returns 0 or the system's error number; nothing here throws.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace corlith::platform {

class SharedMemory {
 public:
  SharedMemory() = default;
  SharedMemory(SharedMemory&& other) noexcept;
  SharedMemory& operator=(SharedMemory&& other) noexcept;
  SharedMemory(const SharedMemory&) = delete;
  SharedMemory& operator=(const SharedMemory&) = delete;
  ~SharedMemory();

  /// Opens the segment `name` ("/name" form) with `size` usable bytes, creating it when
  /// absent. Only the creating process runs `initialise` on the zeroed bytes, before
  /// any other process is let in; the others wait for it. A segment still unready
  /// after about two seconds was left by a creator that died: its name is removed and
  /// the segment made anew (ETIMEDOUT only if that fails the same way). A segment owned
  /// by another user is refused with EACCES, so that nobody can plant a segment under
  /// a name we will open.
  int Open(const std::string& name, std::size_t size, const std::function<void(void*)>& initialise);
  bool IsOpen() const { return m_base != nullptr; }
  /// The usable bytes (null when not open).
  void* Data() const;
  std::size_t Size() const { return m_size; }
  /// Unmaps; the segment itself stays for other processes.
  void Close();

 private:
  int OpenOnce(const std::string& name, std::size_t size, const std::function<void(void*)>& initialise);

  void* m_base = nullptr;  ///< start of the mapping: a readiness header, then the data
  std::size_t m_mappedSize = 0;
  std::size_t m_size = 0;
};

/// Removes the segment's name; processes that have it mapped keep their mapping.
int RemoveSharedMemory(const std::string& name);

/// "/<base>-<uid>": one segment per user, so that one user's processes cannot change
/// what another user's processes see.
std::string PerUserSharedMemoryName(std::string_view base);

}  // namespace corlith::platform
