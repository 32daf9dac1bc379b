// CStdioFile: a buffered file for text. ReadString strips one line end (a line feed,
// and a carriage return before it, so files written on Windows read the same);
// WriteString turns each line feed into the platform's line end in text mode.
#pragma once

#include <corlith/framework/File.h>

#include <cstdio>

class CStdioFile : public CFile {
 public:
  CStdioFile() = default;
  /// Opens the file or throws CFileException.
  CStdioFile(LPCTSTR lpszFileName, UINT nOpenFlags);
  ~CStdioFile() override;

  /// Opening with modeCreate|modeNoTruncate, or modeWrite without modeCreate, appends
  /// (writes go to the end), as in the original.
  BOOL Open(LPCTSTR lpszFileName, UINT nOpenFlags, CFileException* pError = nullptr) override;

  /// Reads one line without its line end. FALSE only when nothing at all was read: an
  /// empty line is an empty string, a last line without a line end is returned, and a
  /// file ending in a line feed gives no extra empty line.
  BOOL ReadString(CString& rString);
  /// Reads at most nMax - 1 bytes up to and including a line feed (kept, with a
  /// carriage return before it dropped); nullptr at the end of the file.
  LPTSTR ReadString(LPTSTR lpsz, UINT nMax);
  /// Writes the text as it stands; in text mode each line feed is the platform's line end.
  void WriteString(LPCTSTR lpsz);

  UINT Read(void* lpBuf, UINT nCount) override;
  void Write(const void* lpBuf, UINT nCount) override;
  ULONGLONG Seek(LONGLONG lOff, UINT nFrom) override;
  ULONGLONG GetLength() const override;
  ULONGLONG GetPosition() const override;
  void SetLength(ULONGLONG dwNewLen) override;
  void Flush() override;
  void Close() override;
  void Abort() override;
  BOOL IsOpen() const override { return m_pStream != nullptr; }

  /// The underlying stream (null when closed).
  std::FILE* m_pStream = nullptr;

 private:
  bool m_bText = true;
};
