#include <corlith/framework/StdioFile.h>

#include <cerrno>
#include <cstring>
#include <string>

CStdioFile::CStdioFile(LPCTSTR lpszFileName, UINT nOpenFlags) {
  CFileException error;
  if (!Open(lpszFileName, nOpenFlags, &error)) throw error;
}

CStdioFile::~CStdioFile() { Abort(); }

BOOL CStdioFile::Open(LPCTSTR lpszFileName, UINT nOpenFlags, CFileException* pError) {
  Abort();
  if (!lpszFileName || !*lpszFileName) {
    if (pError) *pError = CFileException(CFileException::badPath, ENOENT, lpszFileName);
    return FALSE;
  }
  // Open (and create) through CFile first, so that failures are classified the same
  // way as for CFile; then open the stream with the matching stdio mode.
  CFile probe;
  if (!probe.Open(lpszFileName, nOpenFlags & ~static_cast<UINT>(typeText | typeBinary), pError)) return FALSE;
  probe.Close();

  const bool update = (nOpenFlags & modeReadWrite) != 0;
  const char* mode = update ? "r+b" : "rb";
  if (nOpenFlags & modeCreate) {
    if (nOpenFlags & modeNoTruncate) {
      mode = update ? "a+b" : "ab";
    } else {
      mode = update ? "w+b" : "wb";
    }
  } else if (nOpenFlags & modeWrite) {
    mode = "ab";
  }
  m_pStream = std::fopen(lpszFileName, mode);
  if (!m_pStream) {
    const int err = errno;
    if (pError) *pError = CFileException(CFileException::OsErrorToException(err), err, lpszFileName);
    return FALSE;
  }
  m_bText = (nOpenFlags & typeBinary) == 0;
  m_strFileName = lpszFileName;
  return TRUE;
}

BOOL CStdioFile::ReadString(CString& rString) {
  if (!m_pStream) ThrowOsError(EBADF);
  std::string line;
  char chunk[4096];
  bool readAny = false;
  while (std::fgets(chunk, sizeof chunk, m_pStream)) {
    readAny = true;
    const std::size_t n = std::strlen(chunk);
    line.append(chunk, n);
    if (n > 0 && chunk[n - 1] == '\n') break;
  }
  if (std::ferror(m_pStream)) ThrowOsError(errno != 0 ? errno : EIO);
  if (!line.empty() && line.back() == '\n') line.pop_back();
  if (!line.empty() && line.back() == '\r') line.pop_back();
  rString = CString(std::move(line));
  return readAny;
}

LPTSTR CStdioFile::ReadString(LPTSTR lpsz, UINT nMax) {
  if (!m_pStream) ThrowOsError(EBADF);
  if (!lpsz || nMax == 0) AfxThrowInvalidArgException();
  if (nMax > 0x7FFFFFFF) nMax = 0x7FFFFFFF;
  if (!std::fgets(lpsz, static_cast<int>(nMax), m_pStream)) {
    if (std::ferror(m_pStream)) ThrowOsError(errno != 0 ? errno : EIO);
    return nullptr;
  }
  const std::size_t n = std::strlen(lpsz);
  if (n >= 2 && lpsz[n - 2] == '\r' && lpsz[n - 1] == '\n') {
    lpsz[n - 2] = '\n';
    lpsz[n - 1] = '\0';
  }
  return lpsz;
}

void CStdioFile::WriteString(LPCTSTR lpsz) {
  if (!lpsz) AfxThrowInvalidArgException();
  const std::string_view text(lpsz);
  const std::string_view lineEnd = corlith::platform::TextLineEnd();
  if (!m_bText || lineEnd == "\n") {
    Write(text.data(), static_cast<UINT>(text.size()));
    return;
  }
  std::string translated;
  for (char c : text) {
    if (c == '\n') {
      translated.append(lineEnd);
    } else {
      translated.push_back(c);
    }
  }
  Write(translated.data(), static_cast<UINT>(translated.size()));
}

UINT CStdioFile::Read(void* lpBuf, UINT nCount) {
  if (!m_pStream) ThrowOsError(EBADF);
  if (nCount == 0) return 0;
  const std::size_t n = std::fread(lpBuf, 1, nCount, m_pStream);
  if (n < nCount && std::ferror(m_pStream)) ThrowOsError(errno != 0 ? errno : EIO);
  return static_cast<UINT>(n);
}

void CStdioFile::Write(const void* lpBuf, UINT nCount) {
  if (!m_pStream) ThrowOsError(EBADF);
  if (nCount == 0) return;
  if (std::fwrite(lpBuf, 1, nCount, m_pStream) != nCount) ThrowOsError(errno != 0 ? errno : EIO);
}

ULONGLONG CStdioFile::Seek(LONGLONG lOff, UINT nFrom) {
  if (!m_pStream) ThrowOsError(EBADF);
  const int whence = nFrom == begin ? SEEK_SET : nFrom == current ? SEEK_CUR : SEEK_END;
  if (nFrom > end || std::fseek(m_pStream, static_cast<long>(lOff), whence) != 0) {
    ThrowOsError(errno != 0 ? errno : EINVAL);
  }
  return GetPosition();
}

ULONGLONG CStdioFile::GetPosition() const {
  if (!m_pStream) ThrowOsError(EBADF);
  const long position = std::ftell(m_pStream);
  if (position < 0) ThrowOsError(errno);
  return static_cast<ULONGLONG>(position);
}

ULONGLONG CStdioFile::GetLength() const {
  if (!m_pStream) ThrowOsError(EBADF);
  const long position = std::ftell(m_pStream);
  if (position < 0 || std::fseek(m_pStream, 0, SEEK_END) != 0) ThrowOsError(errno);
  const long length = std::ftell(m_pStream);
  std::fseek(m_pStream, position, SEEK_SET);
  if (length < 0) ThrowOsError(errno);
  return static_cast<ULONGLONG>(length);
}

void CStdioFile::SetLength(ULONGLONG) { AfxThrowNotSupportedException(); }

void CStdioFile::Flush() {
  if (m_pStream && std::fflush(m_pStream) != 0) ThrowOsError(errno);
}

void CStdioFile::Close() {
  if (!m_pStream) return;
  const int result = std::fclose(m_pStream);
  m_pStream = nullptr;
  m_strFileName.Empty();
  if (result != 0) ThrowOsError(errno);
}

void CStdioFile::Abort() {
  if (m_pStream) std::fclose(m_pStream);
  m_pStream = nullptr;
  m_strFileName.Empty();
}
