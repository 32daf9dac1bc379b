#include <corlith/framework/File.h>

#include <algorithm>
#include <cerrno>

using corlith::platform::FileAccess;
using corlith::platform::FileOpenOptions;
using corlith::platform::SeekOrigin;

CFile::CFile(LPCTSTR lpszFileName, UINT nOpenFlags) {
  CFileException error;
  if (!Open(lpszFileName, nOpenFlags, &error)) throw error;
}

CFile::~CFile() { Abort(); }

BOOL CFile::Open(LPCTSTR lpszFileName, UINT nOpenFlags, CFileException* pError) {
  Abort();
  FileOpenOptions options;
  switch (nOpenFlags & 3) {
    case modeRead:
      options.access = FileAccess::Read;
      break;
    case modeWrite:
      options.access = FileAccess::Write;
      break;
    case modeReadWrite:
      options.access = FileAccess::ReadWrite;
      break;
    default:
      if (pError) *pError = CFileException(CFileException::genericException, EINVAL, lpszFileName);
      return FALSE;
  }
  options.create = (nOpenFlags & modeCreate) != 0;
  options.truncate = options.create && (nOpenFlags & modeNoTruncate) == 0;
  options.inherit = (nOpenFlags & modeNoInherit) == 0;
  if (!lpszFileName || !*lpszFileName) {
    if (pError) *pError = CFileException(CFileException::badPath, ENOENT, lpszFileName);
    return FALSE;
  }
  if (const int err = m_handle.Open(lpszFileName, options); err != 0) {
    if (pError) *pError = CFileException(CFileException::OsErrorToException(err), err, lpszFileName);
    return FALSE;
  }
  m_strFileName = lpszFileName;
  return TRUE;
}

void CFile::ThrowOsError(int osError) const { CFileException::ThrowOsError(osError, m_strFileName); }

UINT CFile::Read(void* lpBuf, UINT nCount) {
  std::size_t done = 0;
  if (nCount == 0) return 0;
  if (!lpBuf) AfxThrowInvalidArgException();
  if (const int err = m_handle.Read(lpBuf, nCount, done); err != 0) ThrowOsError(err);
  return static_cast<UINT>(done);
}

void CFile::Write(const void* lpBuf, UINT nCount) {
  if (nCount == 0) return;
  if (!lpBuf) AfxThrowInvalidArgException();
  if (const int err = m_handle.Write(lpBuf, nCount); err != 0) {
    // Writing to a file opened for reading only is "access denied" on the original
    // platform; POSIX reports it as a bad descriptor.
    if (err == EBADF && m_handle.IsOpen()) {
      throw CFileException(CFileException::accessDenied, err, m_strFileName);
    }
    ThrowOsError(err);
  }
}

ULONGLONG CFile::Seek(LONGLONG lOff, UINT nFrom) {
  const SeekOrigin origin = nFrom == begin     ? SeekOrigin::Begin
                            : nFrom == current ? SeekOrigin::Current
                                               : SeekOrigin::End;
  if (nFrom > end) ThrowOsError(EINVAL);
  std::uint64_t position = 0;
  if (const int err = m_handle.Seek(lOff, origin, position); err != 0) ThrowOsError(err);
  return position;
}

ULONGLONG CFile::GetLength() const {
  std::uint64_t size = 0;
  if (const int err = m_handle.GetSize(size); err != 0) ThrowOsError(err);
  return size;
}

void CFile::SetLength(ULONGLONG dwNewLen) {
  if (const int err = m_handle.SetSize(dwNewLen); err != 0) ThrowOsError(err);
}

ULONGLONG CFile::GetPosition() const {
  std::uint64_t position = 0;
  // Seek is not const on the handle, but asking for the position changes nothing.
  if (const int err =
          const_cast<corlith::platform::FileHandle&>(m_handle).Seek(0, SeekOrigin::Current, position);
      err != 0) {
    ThrowOsError(err);
  }
  return position;
}

void CFile::Flush() {
  if (!m_handle.IsOpen()) return;
  if (const int err = m_handle.Flush(); err != 0) ThrowOsError(err);
}

void CFile::Close() {
  if (const int err = m_handle.Close(); err != 0) ThrowOsError(err);
  m_strFileName.Empty();
}

void CFile::Abort() {
  m_handle.Close();
  m_strFileName.Empty();
}

CString CFile::GetFileName() const {
  const int cut = std::max(m_strFileName.ReverseFind('/'), m_strFileName.ReverseFind('\\'));
  return m_strFileName.Mid(cut + 1);
}

CString CFile::GetFileTitle() const {
  const CString name = GetFileName();
  const int dot = name.ReverseFind('.');
  return dot < 0 ? name : name.Left(dot);
}

void CFile::Rename(LPCTSTR lpszOldName, LPCTSTR lpszNewName) {
  if (!lpszOldName || !lpszNewName) AfxThrowInvalidArgException();
  if (const int err = corlith::platform::RenameFile(lpszOldName, lpszNewName); err != 0) {
    CFileException::ThrowOsError(err, lpszOldName);
  }
}

void CFile::Remove(LPCTSTR lpszFileName) {
  if (!lpszFileName) AfxThrowInvalidArgException();
  if (const int err = corlith::platform::RemoveFile(lpszFileName); err != 0) {
    CFileException::ThrowOsError(err, lpszFileName);
  }
}
