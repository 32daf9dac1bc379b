// The framework's exception family. Thrown by value and caught by reference:
//   try { ar >> s; } catch (const CArchiveException& e) { if (e.m_cause == CArchiveException::endOfFile) ...
//   }
// Every exception is also a std::exception whose what() gives the message text.
#pragma once

#include <corlith/framework/Object.h>
#include <corlith/framework/String.h>

#include <exception>

class CException : public CObject, public std::exception {
 public:
  CException() = default;
  /// The message of this exception, as text.
  const char* what() const noexcept override;
  /// Copies the message (cut to nMaxError - 1 bytes, zero-terminated) into lpszError.
  virtual BOOL GetErrorMessage(LPTSTR lpszError, UINT nMaxError, UINT* pnHelpContext = nullptr) const;
  /// Shows the message through the host prompt and returns its answer.
  virtual int ReportError(UINT nType = 0, UINT nMessageID = 0);
  /// Present for code written against the pointer-throwing original; does nothing.
  void Delete() {}

 protected:
  /// The message text; what() returns it.
  virtual CString Message() const;

 private:
  mutable CString m_what;
};

/// An argument out of range: array and string element access, negative sizes, ...
class CInvalidArgException : public CException {
 protected:
  CString Message() const override;
};

class CMemoryException : public CException {
 protected:
  CString Message() const override;
};

class CNotSupportedException : public CException {
 protected:
  CString Message() const override;
};

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

  explicit CArchiveException(int cause = none, LPCTSTR lpszArchiveName = nullptr);

  int m_cause;
  CString m_strFileName;

 protected:
  CString Message() const override;
};

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

  explicit CFileException(int cause = none, LONG lOsError = -1, LPCTSTR lpszArchiveName = nullptr);

  /// Maps an operating-system error number (errno on POSIX) to a cause.
  static int OsErrorToException(LONG lOsError);
  /// Throws CFileException for an operating-system error number.
  [[noreturn]] static void ThrowOsError(LONG lOsError, LPCTSTR lpszFileName = nullptr);

  int m_cause;
  LONG m_lOsError;
  CString m_strFileName;

 protected:
  CString Message() const override;
};
