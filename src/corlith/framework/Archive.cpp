#include <corlith/framework/Archive.h>

#include <corlith/framework/File.h>
#include <corlith/framework/Utf.h>

#include <algorithm>
#include <string>

namespace {

constexpr std::size_t kMinBufferSize = 128;
// Strings arrive in slices of this size, so a hostile length prefix costs at most one
// slice of memory before the data runs out.
constexpr std::size_t kStringSlice = 1 << 20;

}  // namespace

CArchive::CArchive(CFile* pFile, UINT nMode, int nBufSize, void* lpBuf)
    : m_pFile(pFile),
      m_nMode(nMode),
      m_nBufSize(std::max<std::size_t>(kMinBufferSize, static_cast<std::size_t>(std::max(nBufSize, 0)))) {
  if (!pFile) AfxThrowInvalidArgException();
  if (lpBuf && nBufSize >= static_cast<int>(kMinBufferSize)) {
    m_lpBuffer = static_cast<BYTE*>(lpBuf);
  } else {
    m_ownedBuffer = std::make_unique<BYTE[]>(m_nBufSize);
    m_lpBuffer = m_ownedBuffer.get();
  }
  m_strFileName = pFile->GetFilePath();
  m_lpBufStart = m_lpBufCur = m_lpBuffer;
  // A storing buffer fills up to its end; a loading buffer starts empty.
  m_lpBufMax = IsStoring() ? m_lpBufStart + m_nBufSize : m_lpBufStart;
}

CArchive::~CArchive() {
  if (m_pFile && (m_nMode & bNoFlushOnDelete) == 0) {
    try {
      Close();
    } catch (...) {
      Abort();
    }
  }
}

ULONGLONG CArchive::GetPosition() const {
  return m_nBufferBase + static_cast<ULONGLONG>(m_lpBufCur - m_lpBufStart);
}

ULONGLONG CArchive::GetBytesLeft() const {
  const auto buffered = static_cast<ULONGLONG>(m_lpBufMax - m_lpBufCur);
  if (!IsLoading() || !m_pFile) return buffered;
  try {
    const ULONGLONG length = m_pFile->GetLength();
    const ULONGLONG position = m_pFile->GetPosition();
    return buffered + (length > position ? length - position : 0);
  } catch (const CException&) {
    return buffered;
  }
}

void CArchive::Close() {
  if (!m_pFile) return;
  Flush();
  m_pFile = nullptr;
}

void CArchive::Abort() {
  // Bytes read in place lie in the file's memory, which may go once the file is left to
  // its owner; the archive keeps handing them out, so it keeps its own copy.
  if (IsLoading()) KeepUnreadInBuffer();
  m_pFile = nullptr;
}

void CArchive::Flush() {
  if (!m_pFile) return;
  if (IsStoring()) {
    FlushBuffer();
    m_pFile->Flush();
    return;
  }
  // Seek first: should the file refuse, the buffer still holds the bytes.
  const auto unread = static_cast<LONGLONG>(m_lpBufMax - m_lpBufCur);
  if (unread > 0) m_pFile->Seek(-unread, CFile::current);
  m_nBufferBase += static_cast<ULONGLONG>(m_lpBufCur - m_lpBufStart);
  m_lpBufStart = m_lpBufCur = m_lpBufMax = m_lpBuffer;
}

void CArchive::ThrowCause(int cause) const { AfxThrowArchiveException(cause, m_strFileName); }

void CArchive::FlushBuffer() {
  if (!m_pFile) ThrowCause(CArchiveException::genericException);
  const auto n = static_cast<std::size_t>(m_lpBufCur - m_lpBufStart);
  if (n > 0) m_pFile->Write(m_lpBufStart, static_cast<UINT>(n));
  m_nBufferBase += n;
  m_lpBufCur = m_lpBufStart;
}

void CArchive::KeepUnreadInBuffer() {
  const auto left = static_cast<std::size_t>(m_lpBufMax - m_lpBufCur);
  m_nBufferBase += static_cast<ULONGLONG>(m_lpBufCur - m_lpBufStart);
  std::memmove(m_lpBuffer, m_lpBufCur, left);
  m_lpBufStart = m_lpBufCur = m_lpBuffer;
  m_lpBufMax = m_lpBuffer + left;
}

std::size_t CArchive::ReadAhead() {
  if (!m_pFile) ThrowCause(CArchiveException::genericException);
  const auto left = static_cast<std::size_t>(m_lpBufMax - m_lpBufCur);
  // The read-ahead stays within a buffer's worth either way, so the file stands where it
  // would with any other file, and GetBytesLeft believes as much as it would.
  const std::size_t room = m_nBufSize - std::min(left, m_nBufSize);
  const std::span<const BYTE> inPlace = m_pFile->ReadInPlace(static_cast<UINT>(room));
  if (!inPlace.empty() && (left == 0 || inPlace.data() == m_lpBufMax)) {
    // The unread bytes, if any, run straight on into the new ones: no copy at all.
    m_nBufferBase += static_cast<ULONGLONG>(m_lpBufCur - m_lpBufStart);
    BYTE* first = const_cast<BYTE*>(inPlace.data());  // a loading archive only reads it
    if (left == 0) m_lpBufCur = first;
    m_lpBufStart = m_lpBufCur;
    m_lpBufMax = first + inPlace.size();
    return inPlace.size();
  }
  KeepUnreadInBuffer();
  if (!inPlace.empty()) {
    // The file moved since the last read-ahead (a seek that did not go through the
    // archive): the new bytes do not follow the unread ones in memory, so copy them.
    std::memcpy(m_lpBufMax, inPlace.data(), inPlace.size());
    m_lpBufMax += inPlace.size();
    return inPlace.size();
  }
  const std::size_t got = m_pFile->Read(m_lpBufMax, static_cast<UINT>(room));
  m_lpBufMax += got;
  return got;
}

void CArchive::FillBuffer(std::size_t nBytes) {
  while (static_cast<std::size_t>(m_lpBufMax - m_lpBufCur) < nBytes) {
    if (ReadAhead() == 0) ThrowCause(CArchiveException::endOfFile);
  }
}

UINT CArchive::Read(void* lpBuf, UINT nMax) {
  CheckLoading();
  auto* out = static_cast<BYTE*>(lpBuf);
  std::size_t done = 0;
  while (done < nMax) {
    auto available = static_cast<std::size_t>(m_lpBufMax - m_lpBufCur);
    if (available == 0) {
      const std::size_t wanted = nMax - done;
      if (wanted >= m_nBufSize && m_pFile) {
        // Large reads bypass the buffer.
        m_nBufferBase += static_cast<ULONGLONG>(m_lpBufCur - m_lpBufStart);
        m_lpBufStart = m_lpBufCur = m_lpBufMax = m_lpBuffer;
        const std::size_t got = m_pFile->Read(out + done, static_cast<UINT>(wanted));
        m_nBufferBase += got;
        done += got;
        if (got < wanted) break;
        continue;
      }
      if (ReadAhead() == 0) break;
      available = static_cast<std::size_t>(m_lpBufMax - m_lpBufCur);
    }
    const std::size_t n = std::min(available, nMax - done);
    std::memcpy(out + done, m_lpBufCur, n);
    m_lpBufCur += n;
    done += n;
  }
  return static_cast<UINT>(done);
}

void CArchive::EnsureRead(void* lpBuf, std::size_t nBytes) {
  auto* out = static_cast<BYTE*>(lpBuf);
  while (nBytes > 0) {
    const UINT chunk = static_cast<UINT>(std::min<std::size_t>(nBytes, 0x40000000));
    if (Read(out, chunk) != chunk) ThrowCause(CArchiveException::endOfFile);
    out += chunk;
    nBytes -= chunk;
  }
}

void CArchive::Write(const void* lpBuf, UINT nMax) {
  CheckStoring();
  const auto* in = static_cast<const BYTE*>(lpBuf);
  const auto room = static_cast<std::size_t>(m_lpBufMax - m_lpBufCur);
  if (nMax <= room) {
    std::memcpy(m_lpBufCur, in, nMax);
    m_lpBufCur += nMax;
    return;
  }
  FlushBuffer();
  if (nMax >= m_nBufSize) {
    // Large writes bypass the buffer.
    m_pFile->Write(in, nMax);
    m_nBufferBase += nMax;
    return;
  }
  std::memcpy(m_lpBufCur, in, nMax);
  m_lpBufCur += nMax;
}

void CArchive::WriteString(LPCTSTR lpsz) {
  if (lpsz) Write(lpsz, static_cast<UINT>(std::strlen(lpsz)));
}

BOOL CArchive::ReadString(CString& rString) {
  CheckLoading();
  std::string line;
  bool readAny = false;
  for (;;) {
    if (m_lpBufCur == m_lpBufMax && ReadAhead() == 0) break;
    readAny = true;
    const char* begin = reinterpret_cast<const char*>(m_lpBufCur);
    const auto available = static_cast<std::size_t>(m_lpBufMax - m_lpBufCur);
    const void* lf = std::memchr(begin, '\n', available);
    if (lf) {
      const auto n = static_cast<std::size_t>(static_cast<const char*>(lf) - begin);
      line.append(begin, n);
      m_lpBufCur += n + 1;
      if (!line.empty() && line.back() == '\r') line.pop_back();
      rString = CString(std::move(line));
      return TRUE;
    }
    line.append(begin, available);
    m_lpBufCur = m_lpBufMax;
  }
  rString = CString(std::move(line));
  return readAny;
}

void CArchive::WriteCount(DWORD_PTR dwCount) {
  if (dwCount < 0xFFFF) {
    *this << static_cast<WORD>(dwCount);
    return;
  }
  *this << static_cast<WORD>(0xFFFF);
  if (dwCount < 0xFFFFFFFF) {
    *this << static_cast<DWORD>(dwCount);
    return;
  }
  *this << static_cast<DWORD>(0xFFFFFFFF);
  *this << static_cast<ULONGLONG>(dwCount);
}

DWORD_PTR CArchive::ReadCount() {
  WORD wCount;
  *this >> wCount;
  if (wCount != 0xFFFF) return wCount;
  DWORD dwCount;
  *this >> dwCount;
  if (dwCount != 0xFFFFFFFF) return dwCount;
  ULONGLONG qwCount;
  *this >> qwCount;
  return static_cast<DWORD_PTR>(qwCount);
}

void CArchive::WriteStringLength(ULONGLONG nLength, bool bUnicode) {
  if (bUnicode) {
    *this << static_cast<BYTE>(0xFF);
    *this << static_cast<WORD>(0xFFFE);
  }
  if (nLength < 255) {
    *this << static_cast<BYTE>(nLength);
    return;
  }
  *this << static_cast<BYTE>(0xFF);
  if (nLength < 0xFFFE) {
    *this << static_cast<WORD>(nLength);
    return;
  }
  *this << static_cast<WORD>(0xFFFF);
  if (nLength < 0xFFFFFFFF) {
    *this << static_cast<DWORD>(nLength);
    return;
  }
  *this << static_cast<DWORD>(0xFFFFFFFF);
  *this << nLength;
}

ULONGLONG CArchive::ReadStringLength(bool& bUnicode) {
  bUnicode = false;
  BYTE bLen;
  *this >> bLen;
  if (bLen < 0xFF) return bLen;
  WORD wLen;
  *this >> wLen;
  if (wLen == 0xFFFE) {
    // The wide marker: the length starts again after it.
    bUnicode = true;
    *this >> bLen;
    if (bLen < 0xFF) return bLen;
    *this >> wLen;
  }
  if (wLen < 0xFFFF) return wLen;
  DWORD dwLen;
  *this >> dwLen;
  if (dwLen < 0xFFFFFFFF) return dwLen;
  ULONGLONG qwLen;
  *this >> qwLen;
  return qwLen;
}

CArchive& operator<<(CArchive& ar, const CString& str) {
  const auto length = static_cast<ULONGLONG>(str.GetLength());
  ar.WriteStringLength(length, false);
  ar.Write(str.GetString(), static_cast<UINT>(length));
  return ar;
}

CArchive& operator>>(CArchive& ar, CString& str) {
  bool wide = false;
  const ULONGLONG length = ar.ReadStringLength(wide);
  const ULONGLONG charSize = wide ? 2 : 1;
  if (length > 0x7FFFFFFF / charSize) {
    // Longer than any CString can be. Consume it slice by slice without keeping it, so
    // that a hostile length ends in end-of-file like any other truncated archive; only
    // when the data really is there does it fail as too long.
    std::string slice(kStringSlice, '\0');
    for (ULONGLONG left = length; left > 0;) {
      const std::size_t n = static_cast<std::size_t>(std::min<ULONGLONG>(left, kStringSlice / charSize));
      ar.EnsureRead(slice.data(), n * charSize);
      left -= n;
    }
    AfxThrowArchiveException(CArchiveException::genericException, ar.m_strFileName);
  }
  const std::size_t bytes = static_cast<std::size_t>(length * charSize);
  std::string data;
  while (data.size() < bytes) {
    const std::size_t slice = std::min(bytes - data.size(), kStringSlice);
    const std::size_t old = data.size();
    data.resize(old + slice);
    ar.EnsureRead(data.data() + old, slice);
  }
  if (wide) {
    std::u16string units(bytes / 2, u'\0');
    std::memcpy(units.data(), data.data(), bytes);
    str = CString(corlith::Utf16ToUtf8(units));
  } else {
    str = CString(std::move(data));
  }
  return ar;
}
