// CMemFile: a CFile held in memory, the usual target of archives built in memory.
// It owns its memory unless a buffer is attached; an attached buffer with a grow step
// of 0 has a fixed size, and writing past it throws CMemoryException (as the original).
// Loading archives parse it in place (ReadInPlace) rather than copy it to their buffer.
#pragma once

#include <corlith/framework/File.h>

#include <cstdlib>
#include <memory>
#include <span>
#include <vector>

class CMemFile : public CFile {
 public:
  /// An empty, growing file; nGrowBytes is the minimum growth step.
  explicit CMemFile(UINT nGrowBytes = 1024);
  /// A file over the caller's buffer (see Attach).
  CMemFile(BYTE* lpBuffer, UINT nBufferSize, UINT nGrowBytes = 0);
  ~CMemFile() override;

  /// Uses lpBuffer as the file's memory; its size is nBufferSize when nGrowBytes is 0
  /// (a fixed-size file to read), else 0 (a file to write that may grow: the buffer
  /// must then come from malloc, as it is reallocated).
  void Attach(BYTE* lpBuffer, UINT nBufferSize, UINT nGrowBytes = 0);
  /// Gives up the memory and returns it: an attached buffer goes back to its owner;
  /// memory the file allocated itself must be released with free().
  BYTE* Detach();

  /// The file's bytes (valid until the next write).
  std::span<const BYTE> GetData() const { return {m_lpBuffer, static_cast<std::size_t>(m_nFileSize)}; }

  BOOL Open(LPCTSTR lpszFileName, UINT nOpenFlags, CFileException* pError = nullptr) override;
  UINT Read(void* lpBuf, UINT nCount) override;
  /// The bytes stay readable until the file is closed, attached or detached, even when
  /// the file grows in the meantime (it then moves to new memory and keeps the old).
  std::span<const BYTE> ReadInPlace(UINT nMax) override;
  void Write(const void* lpBuf, UINT nCount) override;
  ULONGLONG Seek(LONGLONG lOff, UINT nFrom) override;
  ULONGLONG GetLength() const override { return m_nFileSize; }
  void SetLength(ULONGLONG dwNewLen) override;
  ULONGLONG GetPosition() const override { return m_nPosition; }
  void Flush() override {}
  void Close() override;
  void Abort() override;
  BOOL IsOpen() const override { return TRUE; }

 private:
  void GrowFile(ULONGLONG dwNewLen);
  void FreeOwned();

  struct FreeMemory {
    void operator()(BYTE* p) const { std::free(p); }
  };

  UINT m_nGrowBytes;
  BYTE* m_lpBuffer = nullptr;
  ULONGLONG m_nBufferSize = 0;
  ULONGLONG m_nFileSize = 0;
  ULONGLONG m_nPosition = 0;
  bool m_bAutoDelete = true;  ///< the memory was allocated here (or handed over to grow)
  bool m_bLent = false;       ///< ReadInPlace handed out the current memory
  /// Memory lent by ReadInPlace before the file grew: a reader may still be parsing it.
  std::vector<std::unique_ptr<BYTE, FreeMemory>> m_retired;
};
