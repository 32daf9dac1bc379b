// CFile: unbuffered binary file access with the original's open flags; failures of
// the constructor, Read, Write, Seek and friends throw CFileException.
#pragma once

#include <corlith/framework/Exceptions.h>
#include <corlith/framework/Object.h>
#include <corlith/framework/String.h>
#include <corlith/platform/File.h>

#include <span>

class CFile : public CObject {
 public:
  enum OpenFlags : UINT {
    modeRead = 0x0000,
    modeWrite = 0x0001,
    modeReadWrite = 0x0002,
    shareCompat = 0x0000,
    shareExclusive = 0x0010,
    shareDenyWrite = 0x0020,
    shareDenyRead = 0x0030,
    shareDenyNone = 0x0040,
    modeNoInherit = 0x0080,
    modeCreate = 0x1000,
    modeNoTruncate = 0x2000,
    typeText = 0x4000,
    typeBinary = 0x8000,
    osNoBuffer = 0x10000,
    osWriteThrough = 0x20000,
    osRandomAccess = 0x40000,
    osSequentialScan = 0x80000,
  };
  enum SeekPosition : UINT { begin = 0x0, current = 0x1, end = 0x2 };

  CFile() = default;
  /// Opens the file or throws CFileException.
  CFile(LPCTSTR lpszFileName, UINT nOpenFlags);
  /// Closes the file if open (errors are ignored here; call Close() to see them).
  ~CFile() override;
  CFile(const CFile&) = delete;
  CFile& operator=(const CFile&) = delete;

  /// Opens the file; FALSE on failure, with the cause in *pError when given. Sharing
  /// modes are accepted and not enforced (POSIX has no mandatory share locks).
  virtual BOOL Open(LPCTSTR lpszFileName, UINT nOpenFlags, CFileException* pError = nullptr);
  virtual UINT Read(void* lpBuf, UINT nCount);
  /// Read without the copy, for a file that holds its bytes in memory: up to nMax of them
  /// where they lie, the position moving past them as Read moves it. Empty at the end and
  /// for files that cannot (the default: use Read). The bytes stay readable while the
  /// file stays open; writing over them changes them.
  virtual std::span<const BYTE> ReadInPlace(UINT nMax) {
    static_cast<void>(nMax);
    return {};
  }
  virtual void Write(const void* lpBuf, UINT nCount);
  virtual ULONGLONG Seek(LONGLONG lOff, UINT nFrom);
  void SeekToBegin() { Seek(0, begin); }
  ULONGLONG SeekToEnd() { return Seek(0, end); }
  virtual ULONGLONG GetLength() const;
  virtual void SetLength(ULONGLONG dwNewLen);
  virtual ULONGLONG GetPosition() const;
  virtual void Flush();
  virtual void Close();
  /// Closes without reporting errors.
  virtual void Abort();
  virtual BOOL IsOpen() const { return m_handle.IsOpen(); }

  /// The path the file was opened with.
  virtual CString GetFilePath() const { return m_strFileName; }
  virtual void SetFilePath(LPCTSTR lpszNewName) { m_strFileName = lpszNewName; }
  /// The last path segment ("a/b/c.txt" -> "c.txt"); either separator counts.
  virtual CString GetFileName() const;
  /// The file name without its extension ("c.txt" -> "c").
  virtual CString GetFileTitle() const;

  /// Renames a file; throws CFileException on failure.
  static void Rename(LPCTSTR lpszOldName, LPCTSTR lpszNewName);
  /// Removes a file; throws CFileException on failure.
  static void Remove(LPCTSTR lpszFileName);

 protected:
  [[noreturn]] void ThrowOsError(int osError) const;

  corlith::platform::FileHandle m_handle;
  CString m_strFileName;
};
