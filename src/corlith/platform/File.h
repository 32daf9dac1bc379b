// Files at the operating-system level: a move-only handle that closes itself, and
// the classification of the system's error numbers. Every call returns 0 or the
// system's error number; nothing here throws.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>

namespace corlith::platform {

/// What an operating-system error number means for a file operation.
enum class FileErrorKind {
  None,
  NotFound,
  BadPath,
  TooManyOpen,
  AccessDenied,
  InvalidFile,
  BadSeek,
  HardIo,
  SharingViolation,
  LockViolation,
  DiskFull,
  Generic
};

FileErrorKind ClassifyOsError(long osError);

enum class FileAccess { Read, Write, ReadWrite };
enum class SeekOrigin { Begin, Current, End };

struct FileOpenOptions {
  FileAccess access = FileAccess::Read;
  bool create = false;     ///< create the file when it does not exist
  bool truncate = false;   ///< empty an existing file (only with create)
  bool exclusive = false;  ///< fail with EEXIST when anything is there, a link too (only with create)
  bool inherit = false;    ///< let child processes inherit the handle
};

class FileHandle {
 public:
  FileHandle() = default;
  FileHandle(FileHandle&& other) noexcept;
  FileHandle& operator=(FileHandle&& other) noexcept;
  FileHandle(const FileHandle&) = delete;
  FileHandle& operator=(const FileHandle&) = delete;
  ~FileHandle();

  /// Opens `path`; returns 0 or the error number (the handle stays closed on error).
  int Open(const std::filesystem::path& path, const FileOpenOptions& options);
  bool IsOpen() const { return m_fd >= 0; }
  /// Closes the handle; returns 0 or the error number of the close.
  int Close();

  /// Reads up to `size` bytes; `done` is the count read (short only at end of file).
  int Read(void* buffer, std::size_t size, std::size_t& done);
  /// Writes all `size` bytes (retrying short writes).
  int Write(const void* buffer, std::size_t size);
  int Seek(std::int64_t offset, SeekOrigin origin, std::uint64_t& newPosition);
  int GetSize(std::uint64_t& size) const;
  int SetSize(std::uint64_t size);
  int Flush();

 private:
  int m_fd = -1;
};

/// Removes a file (not a folder).
int RemoveFile(const std::filesystem::path& path);
/// Renames or moves a file; fails when the target exists on platforms that refuse it.
int RenameFile(const std::filesystem::path& from, const std::filesystem::path& to);

/// The platform's text line end ("\n" on POSIX, "\r\n" on Windows).
const char* TextLineEnd();

}  // namespace corlith::platform
