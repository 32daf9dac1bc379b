// CArchive: the framework's binary stream over a CFile, byte-compatible with archives
// written by the original on Windows. Primitives are little-endian with fixed sizes
// (BYTE/char/bool 1, WORD/short 2, int/UINT/LONG/DWORD/BOOL/float 4, double and
// LONGLONG 8); `long`, `unsigned long` and `wchar_t` differ between platforms and are
// refused at compile time. Misuse and running out of data throw CArchiveException.
// A loading archive reads its file ahead in buffer-sized blocks and gives back what it
// did not hand out when it is flushed or closed, as the original does. A file that holds
// its bytes in memory (CFile::ReadInPlace) is parsed where they lie, without a copy: so
// writing over bytes of it that the archive has read ahead changes what the archive loads.
#pragma once

#include <corlith/framework/Exceptions.h>
#include <corlith/framework/Object.h>
#include <corlith/framework/String.h>

#include <bit>
#include <cstring>
#include <memory>
#include <span>
#include <type_traits>

static_assert(std::endian::native == std::endian::little,
              "archives copy values as their in-memory bytes: a little-endian host is required");

class CFile;

class CArchive {
 public:
  enum Mode { store = 0, load = 1, bNoFlushOnDelete = 2, bNoByteSwap = 4 };

  /// An archive over pFile (which must stay open while the archive lives). nBufSize is
  /// the buffer size; below 128 bytes the archive uses 128. lpBuf is an optional
  /// caller-owned buffer of nBufSize bytes; it is ignored (the archive allocates its own)
  /// when nBufSize is below 128.
  CArchive(CFile* pFile, UINT nMode, int nBufSize = 4096, void* lpBuf = nullptr);
  /// Closes the archive (see Close) unless bNoFlushOnDelete. Errors are swallowed here:
  /// call Close() to see them.
  ~CArchive();
  CArchive(const CArchive&) = delete;
  CArchive& operator=(const CArchive&) = delete;

  BOOL IsLoading() const { return (m_nMode & load) != 0; }
  BOOL IsStoring() const { return (m_nMode & load) == 0; }
  BOOL IsBufferEmpty() const { return m_lpBufCur == m_lpBufMax; }
  CFile* GetFile() const { return m_pFile; }
  /// Bytes stored into or loaded from this archive so far.
  ULONGLONG GetPosition() const;
  /// For a loading archive: the bytes still there to load (buffered ones plus the rest
  /// of the file), or only the buffered ones when the file cannot tell its length.
  ULONGLONG GetBytesLeft() const;

  /// Flushes (see Flush) and detaches the archive from its file; the file stays open.
  /// When the flush throws, the archive stays attached.
  void Close();
  /// Detaches from the file without flushing; never throws.
  void Abort();
  /// Storing: writes the buffered bytes to the file. Loading: gives back the read-ahead,
  /// seeking the file back by the bytes buffered but not handed out, so that the file
  /// stands just after the last byte loaded; loading can go on afterwards. A file that
  /// cannot seek (a pipe) cannot take them back: then the file's CFileException
  /// propagates and the archive keeps them, so loading can still go on from it.
  void Flush();

  /// Reads up to nMax bytes; returns the count read (short only at the end of the data).
  UINT Read(void* lpBuf, UINT nMax);
  void Write(const void* lpBuf, UINT nMax);
  /// Reads exactly nBytes or throws endOfFile.
  void EnsureRead(void* lpBuf, std::size_t nBytes);

  /// For loaders that parse many small records straight from the buffer: the loaded
  /// bytes buffered and not handed out yet (empty for a storing archive). Reads and
  /// extractions refill the buffer; this never does.
  std::span<const BYTE> GetBuffered() const {
    if (!IsLoading()) return {};
    return {m_lpBufCur, m_lpBufMax};
  }
  /// Hands out nBytes of GetBuffered() as if they were read; more than that throws
  /// CInvalidArgException.
  void Consume(std::size_t nBytes) {
    if (nBytes > GetBuffered().size()) AfxThrowInvalidArgException();
    m_lpBufCur += nBytes;
  }

  /// Writes the text as it stands (no line end, no terminator).
  void WriteString(LPCTSTR lpsz);
  /// Reads one line; strips the line feed and a carriage return before it. FALSE when
  /// nothing at all was left to read.
  BOOL ReadString(CString& rString);

  /// The framework's count form: 16-bit below 0xFFFF, else escapes to 32 and 64 bits.
  void WriteCount(DWORD_PTR dwCount);
  DWORD_PTR ReadCount();

  /// The string length prefix (see operator<<(CArchive&, const CString&)); bUnicode
  /// writes the wide marker first.
  void WriteStringLength(ULONGLONG nLength, bool bUnicode);
  /// Reads a length prefix; bUnicode tells whether the wide marker was present.
  ULONGLONG ReadStringLength(bool& bUnicode);

  // --- Primitives ------------------------------------------------------------
  CArchive& operator<<(BYTE v) { return Put(v); }
  CArchive& operator<<(char v) { return Put(v); }
  CArchive& operator<<(signed char v) { return Put(v); }
  CArchive& operator<<(bool v) { return Put(static_cast<BYTE>(v ? 1 : 0)); }
  CArchive& operator<<(WORD v) { return Put(v); }
  CArchive& operator<<(short v) { return Put(v); }
  CArchive& operator<<(int v) { return Put(v); }
  CArchive& operator<<(unsigned int v) { return Put(v); }
  CArchive& operator<<(LONGLONG v) { return Put(v); }
  CArchive& operator<<(ULONGLONG v) { return Put(v); }
  CArchive& operator<<(float v) { return Put(v); }
  CArchive& operator<<(double v) { return Put(v); }
  CArchive& operator<<(long) = delete;  // 4 bytes on Windows, 8 here: say which
  CArchive& operator<<(unsigned long) = delete;
  CArchive& operator<<(wchar_t) = delete;

  CArchive& operator>>(BYTE& v) { return Get(v); }
  CArchive& operator>>(char& v) { return Get(v); }
  CArchive& operator>>(signed char& v) { return Get(v); }
  /// Any non-zero byte reads as true.
  CArchive& operator>>(bool& v) {
    BYTE b;
    Get(b);
    v = b != 0;
    return *this;
  }
  CArchive& operator>>(WORD& v) { return Get(v); }
  CArchive& operator>>(short& v) { return Get(v); }
  CArchive& operator>>(int& v) { return Get(v); }
  CArchive& operator>>(unsigned int& v) { return Get(v); }
  CArchive& operator>>(LONGLONG& v) { return Get(v); }
  CArchive& operator>>(ULONGLONG& v) { return Get(v); }
  CArchive& operator>>(float& v) { return Get(v); }
  CArchive& operator>>(double& v) { return Get(v); }
  CArchive& operator>>(long&) = delete;
  CArchive& operator>>(unsigned long&) = delete;
  CArchive& operator>>(wchar_t&) = delete;

  /// Stores a serialisable object through its Serialize (no class information is
  /// written: the reader must know the type).
  CArchive& operator<<(CObject& obj) {
    CheckStoring();
    obj.Serialize(*this);
    return *this;
  }
  CArchive& operator>>(CObject& obj) {
    CheckLoading();
    obj.Serialize(*this);
    return *this;
  }

  /// The name used in exceptions thrown by this archive (the file's path by default).
  CString m_strFileName;

 private:
  template <typename T>
  CArchive& Put(T v) {
    static_assert(std::is_trivially_copyable_v<T>);
    CheckStoring();
    if (static_cast<std::size_t>(m_lpBufMax - m_lpBufCur) < sizeof(T)) FlushBuffer();
    std::memcpy(m_lpBufCur, &v, sizeof(T));
    m_lpBufCur += sizeof(T);
    return *this;
  }

  template <typename T>
  CArchive& Get(T& v) {
    static_assert(std::is_trivially_copyable_v<T>);
    CheckLoading();
    if (static_cast<std::size_t>(m_lpBufMax - m_lpBufCur) < sizeof(T)) FillBuffer(sizeof(T));
    std::memcpy(&v, m_lpBufCur, sizeof(T));
    m_lpBufCur += sizeof(T);
    return *this;
  }

  void CheckStoring() const {
    if (!IsStoring()) ThrowCause(CArchiveException::readOnly);
  }
  void CheckLoading() const {
    if (!IsLoading()) ThrowCause(CArchiveException::writeOnly);
  }
  [[noreturn]] void ThrowCause(int cause) const;
  /// Writes the buffer to the file and empties it.
  void FlushBuffer();
  /// Makes at least nBytes available in the buffer, or throws endOfFile.
  void FillBuffer(std::size_t nBytes);
  /// Adds what the file has next after the unread bytes, up to a buffer's worth in all;
  /// returns the count added (0 at the end of the file).
  std::size_t ReadAhead();
  /// Moves the unread bytes to the front of the archive's own buffer.
  void KeepUnreadInBuffer();

  CFile* m_pFile;
  UINT m_nMode;
  std::size_t m_nBufSize;
  std::unique_ptr<BYTE[]> m_ownedBuffer;
  /// The archive's own buffer of m_nBufSize bytes (m_ownedBuffer or the caller's).
  BYTE* m_lpBuffer;
  /// The bytes buffered: in m_lpBuffer, or, loading in place, in the file's own memory
  /// (never written through then).
  BYTE* m_lpBufStart;
  BYTE* m_lpBufCur;
  BYTE* m_lpBufMax;
  /// Bytes that passed through the buffer before its current contents.
  ULONGLONG m_nBufferBase = 0;
};

/// The framework's string form: the length prefix (1 byte below 255; 0xFF + 16 bits;
/// 0xFF 0xFFFF + 32 bits; 0xFF 0xFFFF 0xFFFFFFFF + 64 bits), then the bytes.
CArchive& operator<<(CArchive& ar, const CString& str);
/// Reads either string form; wide (UTF-16LE) text is converted to UTF-8. The length is
/// never used to size memory before the data is there.
CArchive& operator>>(CArchive& ar, CString& str);
