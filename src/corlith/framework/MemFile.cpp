#include <corlith/framework/MemFile.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>

CMemFile::CMemFile(UINT nGrowBytes) : m_nGrowBytes(nGrowBytes) {}

CMemFile::CMemFile(BYTE* lpBuffer, UINT nBufferSize, UINT nGrowBytes) : m_nGrowBytes(nGrowBytes) {
  Attach(lpBuffer, nBufferSize, nGrowBytes);
}

CMemFile::~CMemFile() { FreeOwned(); }

void CMemFile::FreeOwned() {
  if (m_bAutoDelete) std::free(m_lpBuffer);
  m_lpBuffer = nullptr;
  m_nBufferSize = m_nFileSize = m_nPosition = 0;
  m_bAutoDelete = true;
  m_bLent = false;
  m_retired.clear();
}

void CMemFile::Attach(BYTE* lpBuffer, UINT nBufferSize, UINT nGrowBytes) {
  FreeOwned();
  m_lpBuffer = lpBuffer;
  m_nBufferSize = nBufferSize;
  m_nGrowBytes = nGrowBytes;
  m_nFileSize = nGrowBytes == 0 ? nBufferSize : 0;
  m_bAutoDelete = false;
}

BYTE* CMemFile::Detach() {
  BYTE* buffer = m_lpBuffer;
  m_lpBuffer = nullptr;
  m_bAutoDelete = true;
  m_nBufferSize = m_nFileSize = m_nPosition = 0;
  m_bLent = false;
  m_retired.clear();
  return buffer;
}

BOOL CMemFile::Open(LPCTSTR lpszFileName, UINT, CFileException* pError) {
  // A memory file has no name to open, as in the original.
  if (pError) *pError = CFileException(CFileException::genericException, ENOTSUP, lpszFileName);
  return FALSE;
}

void CMemFile::GrowFile(ULONGLONG dwNewLen) {
  if (dwNewLen <= m_nBufferSize) return;
  if (m_nGrowBytes == 0) AfxThrowMemoryException();
  // At least the grow step, and at least doubling, so appending stays linear.
  ULONGLONG newSize = std::max(m_nBufferSize * 2, m_nBufferSize + m_nGrowBytes);
  newSize = std::max(newSize, dwNewLen);
  BYTE* grown = nullptr;
  if (m_bLent) {
    // A loading archive may still be parsing the current memory in place: move to new
    // memory and keep the old until the file is closed, rather than realloc under it.
    std::unique_ptr<BYTE, FreeMemory> moved(
        static_cast<BYTE*>(std::malloc(static_cast<std::size_t>(newSize))));
    if (!moved) AfxThrowMemoryException();
    std::memcpy(moved.get(), m_lpBuffer, static_cast<std::size_t>(m_nFileSize));
    // Growing takes over an attached buffer too (realloc would have freed it).
    m_retired.emplace_back(m_lpBuffer);
    grown = moved.release();
    m_bLent = false;
  } else {
    grown = static_cast<BYTE*>(std::realloc(m_lpBuffer, static_cast<std::size_t>(newSize)));
    if (!grown) AfxThrowMemoryException();
  }
  m_lpBuffer = grown;
  m_nBufferSize = newSize;
  m_bAutoDelete = true;
}

UINT CMemFile::Read(void* lpBuf, UINT nCount) {
  if (nCount == 0 || m_nPosition >= m_nFileSize) return 0;
  if (!lpBuf) AfxThrowInvalidArgException();
  const auto n = static_cast<UINT>(std::min<ULONGLONG>(nCount, m_nFileSize - m_nPosition));
  std::memcpy(lpBuf, m_lpBuffer + m_nPosition, n);
  m_nPosition += n;
  return n;
}

std::span<const BYTE> CMemFile::ReadInPlace(UINT nMax) {
  if (nMax == 0 || m_nPosition >= m_nFileSize) return {};
  const auto n = static_cast<std::size_t>(std::min<ULONGLONG>(nMax, m_nFileSize - m_nPosition));
  const std::span<const BYTE> bytes(m_lpBuffer + m_nPosition, n);
  m_nPosition += n;
  m_bLent = true;
  return bytes;
}

void CMemFile::Write(const void* lpBuf, UINT nCount) {
  if (nCount == 0) return;
  if (!lpBuf) AfxThrowInvalidArgException();
  const ULONGLONG newEnd = m_nPosition + nCount;
  GrowFile(newEnd);
  if (m_nPosition > m_nFileSize) std::memset(m_lpBuffer + m_nFileSize, 0, m_nPosition - m_nFileSize);
  std::memcpy(m_lpBuffer + m_nPosition, lpBuf, nCount);
  m_nPosition = newEnd;
  m_nFileSize = std::max(m_nFileSize, newEnd);
}

ULONGLONG CMemFile::Seek(LONGLONG lOff, UINT nFrom) {
  LONGLONG base = 0;
  switch (nFrom) {
    case begin:
      base = 0;
      break;
    case current:
      base = static_cast<LONGLONG>(m_nPosition);
      break;
    case end:
      base = static_cast<LONGLONG>(m_nFileSize);
      break;
    default:
      AfxThrowFileException(CFileException::badSeek, EINVAL);
  }
  // Before the start, or past what a 64-bit position can say, is a bad seek.
  const bool bad = lOff < 0 ? base + lOff < 0 : base > std::numeric_limits<LONGLONG>::max() - lOff;
  if (bad) AfxThrowFileException(CFileException::badSeek, EINVAL);
  m_nPosition = static_cast<ULONGLONG>(base + lOff);
  return m_nPosition;
}

void CMemFile::SetLength(ULONGLONG dwNewLen) {
  GrowFile(dwNewLen);
  if (dwNewLen > m_nFileSize) std::memset(m_lpBuffer + m_nFileSize, 0, dwNewLen - m_nFileSize);
  m_nFileSize = dwNewLen;
  m_nPosition = std::min(m_nPosition, m_nFileSize);
}

void CMemFile::Close() { FreeOwned(); }

void CMemFile::Abort() { FreeOwned(); }
