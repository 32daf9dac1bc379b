// The framework's exception family, thrown by value and caught by reference:
//   try { ar >> s; }
//   catch (const CArchiveException& e) { if (e.m_cause == CArchiveException::endOfFile) ... }
// Every exception is also a std::exception whose what() gives the message text; the
// AfxThrow... helpers that raise them are declared in Object.h.
#pragma once

#include <corlith/framework/Object.h>
#include <corlith/framework/String.h>

#include <exception>

class CException : public CObject, public std::exception {
 public:
  CException() = default;
  /// The message text; valid while this exception lives and until what() is called again.
  const char* what() const noexcept override;
  /// Copies the message (cut to nMaxError - 1 bytes, zero-terminated) into lpszError and
  /// sets *pnHelpContext to 0; FALSE, copying nothing, for a null buffer or nMaxError 0.
  virtual BOOL GetErrorMessage(LPTSTR lpszError, UINT nMaxError, UINT* pnHelpContext = nullptr) const;
  /// Shows the message through AfxMessageBox with the MB_ flags nType and returns its
  /// answer; nMessageID is not used.
  virtual int ReportError(UINT nType = 0, UINT nMessageID = 0);
  /// Present for code written against the pointer-throwing original; does nothing.
  void Delete() {}

 protected:
  /// The message text; what() returns it.
  virtual CString Message() const;

 private:
  mutable CString m_what;
};

/// A bad argument: an index or range out of bounds (array and string element access),
/// a negative size, a null buffer, an array appended to itself.
class CInvalidArgException : public CException {
 protected:
  CString Message() const override;
};

/// A CMemFile that cannot grow: one over a fixed buffer written past its end, or one
/// whose buffer could not be enlarged.
class CMemoryException : public CException {
 protected:
  CString Message() const override;
};

/// An operation the original does not offer either (CStdioFile::SetLength, CUIntArray's
/// Serialize, ...).
class CNotSupportedException : public CException {
 protected:
  CString Message() const override;
};

/// Archive misuse and truncated archive data. The message is the cause's text, after
/// "<file name>: " when the archive's file has a name.
class CArchiveException : public CException {
 public:
  enum {
    none = 0,
    genericException = 1,
    readOnly = 2,  ///< storing into a loading archive
    endOfFile = 3,
    writeOnly = 4,  ///< loading from a storing archive
    badIndex = 5,
    badClass = 6,
    badSchema = 7,
    bufferFull = 8,
  };

  /// lpszArchiveName: the name of the archive's file, or null.
  explicit CArchiveException(int cause = none, LPCTSTR lpszArchiveName = nullptr);

  /// One of the causes above; an unknown value reads as genericException in the message.
  int m_cause;
  /// The archive's file name; empty when it has none.
  CString m_strFileName;

 protected:
  CString Message() const override;
};

/// A failed operation of CFile and its derived classes. The message is the cause's text,
/// after "<file name>: " when a file name is given.
class CFileException : public CException {
 public:
  enum {
    none = 0,
    genericException = 1,
    fileNotFound = 2,
    badPath = 3,
    tooManyOpenFiles = 4,
    accessDenied = 5,
    invalidFile = 6,
    removeCurrentDir = 7,
    directoryFull = 8,
    badSeek = 9,
    hardIO = 10,
    sharingViolation = 11,
    lockViolation = 12,
    diskFull = 13,
    endOfFile = 14,
  };

  explicit CFileException(int cause = none, LONG lOsError = -1, LPCTSTR lpszFileName = nullptr);

  /// Maps an operating-system error number (errno on POSIX) to a cause.
  static int OsErrorToException(LONG lOsError);
  /// Throws CFileException for an operating-system error number.
  [[noreturn]] static void ThrowOsError(LONG lOsError, LPCTSTR lpszFileName = nullptr);

  /// One of the causes above; an unknown value reads as genericException in the message.
  int m_cause;
  /// The operating-system error number behind the cause (errno on POSIX); -1 when none.
  LONG m_lOsError;
  /// The file's name; empty when none was given.
  CString m_strFileName;

 protected:
  CString Message() const override;
};
