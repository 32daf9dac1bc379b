#include <corlith/framework/Exceptions.h>

#include <corlith/framework/HostPrompt.h>
#include <corlith/platform/File.h>

#include <algorithm>
#include <cstring>
#include <span>

namespace {

// The message of a cause-carrying exception: the cause's text (texts[1], the generic one,
// for a cause outside the table), after "<file name>: " when there is a name.
CString CauseMessage(std::span<const char* const> texts, int cause, const CString& fileName) {
  const char* text = cause >= 0 && static_cast<std::size_t>(cause) < texts.size()
                         ? texts[static_cast<std::size_t>(cause)]
                         : texts[1];
  CString message(text);
  if (!fileName.IsEmpty()) message = fileName + ": " + message;
  return message;
}

}  // namespace

void CObject::Serialize(CArchive&) {}

const char* CException::what() const noexcept {
  try {
    m_what = Message();
    return m_what.GetString();
  } catch (...) {
    return "exception";
  }
}

BOOL CException::GetErrorMessage(LPTSTR lpszError, UINT nMaxError, UINT* pnHelpContext) const {
  if (pnHelpContext) *pnHelpContext = 0;
  if (!lpszError || nMaxError == 0) return FALSE;
  const CString message = Message();
  const std::size_t n = std::min<std::size_t>(static_cast<std::size_t>(message.GetLength()), nMaxError - 1);
  std::memcpy(lpszError, message.GetString(), n);
  lpszError[n] = '\0';
  return TRUE;
}

int CException::ReportError(UINT nType, UINT) { return AfxMessageBox(Message(), nType); }

CString CException::Message() const { return "An unknown error has occurred."; }

CString CInvalidArgException::Message() const { return "Encountered an improper argument."; }
CString CMemoryException::Message() const { return "Out of memory."; }
CString CNotSupportedException::Message() const { return "An unsupported operation was attempted."; }

CArchiveException::CArchiveException(int cause, LPCTSTR lpszArchiveName)
    : m_cause(cause), m_strFileName(lpszArchiveName) {}

CString CArchiveException::Message() const {
  static constexpr const char* kTexts[] = {
      "No error occurred.",
      "An unknown error occurred while accessing the archive.",
      "Tried to store into an archive opened for loading.",
      "Reached the end of the archive unexpectedly.",
      "Tried to load from an archive opened for storing.",
      "Invalid file format.",
      "Tried to read an object into an object of the wrong type.",
      "Tried to read an object with a mismatched version.",
      "The archive buffer is full.",
  };
  return CauseMessage(kTexts, m_cause, m_strFileName);
}

CFileException::CFileException(int cause, LONG lOsError, LPCTSTR lpszFileName)
    : m_cause(cause), m_lOsError(lOsError), m_strFileName(lpszFileName) {}

int CFileException::OsErrorToException(LONG lOsError) {
  using corlith::platform::FileErrorKind;
  switch (corlith::platform::ClassifyOsError(lOsError)) {
    case FileErrorKind::None:
      return none;
    case FileErrorKind::NotFound:
      return fileNotFound;
    case FileErrorKind::BadPath:
      return badPath;
    case FileErrorKind::TooManyOpen:
      return tooManyOpenFiles;
    case FileErrorKind::AccessDenied:
      return accessDenied;
    case FileErrorKind::InvalidFile:
      return invalidFile;
    case FileErrorKind::BadSeek:
      return badSeek;
    case FileErrorKind::HardIo:
      return hardIO;
    case FileErrorKind::SharingViolation:
      return sharingViolation;
    case FileErrorKind::LockViolation:
      return lockViolation;
    case FileErrorKind::DiskFull:
      return diskFull;
    case FileErrorKind::Generic:
      break;
  }
  return genericException;
}

void CFileException::ThrowOsError(LONG lOsError, LPCTSTR lpszFileName) {
  throw CFileException(OsErrorToException(lOsError), lOsError, lpszFileName);
}

CString CFileException::Message() const {
  static constexpr const char* kTexts[] = {
      "No error occurred.",
      "An unspecified error occurred.",
      "The file could not be located.",
      "All or part of the path is invalid.",
      "The permitted number of open files was exceeded.",
      "The file could not be accessed.",
      "There was an attempt to use an invalid file handle.",
      "The current working directory cannot be removed.",
      "There are no more directory entries.",
      "There was an error trying to set the file pointer.",
      "There was a hardware error.",
      "A sharing violation occurred.",
      "There was an attempt to lock a region that was already locked.",
      "The disk is full.",
      "The end of file was reached.",
  };
  return CauseMessage(kTexts, m_cause, m_strFileName);
}

void AfxThrowInvalidArgException() { throw CInvalidArgException(); }
void AfxThrowArchiveException(int cause, LPCTSTR lpszArchiveName) {
  throw CArchiveException(cause, lpszArchiveName);
}
void AfxThrowFileException(int cause, LONG lOsError, LPCTSTR lpszFileName) {
  throw CFileException(cause, lOsError, lpszFileName);
}
void AfxThrowMemoryException() { throw CMemoryException(); }
void AfxThrowNotSupportedException() { throw CNotSupportedException(); }
