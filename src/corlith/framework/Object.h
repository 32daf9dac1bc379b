// CObject, the root of every serialisable class, and the framework's throw helpers.
// Exceptions are thrown by value and caught by reference (see Exceptions.h).
#pragma once

#include <corlith/framework/Types.h>

class CArchive;

/// Root of the serialisable classes: a virtual destructor and a virtual Serialize.
class CObject {
 public:
  CObject() = default;
  CObject(const CObject&) = default;
  CObject& operator=(const CObject&) = default;
  virtual ~CObject() = default;

  /// Writes nothing and reads nothing; derived classes store or load their fields.
  virtual void Serialize(CArchive& ar);
  /// True for classes that take part in archives (all of ours do).
  virtual BOOL IsSerializable() const { return TRUE; }
};

/// Throws CInvalidArgException.
[[noreturn]] void AfxThrowInvalidArgException();
/// Throws CArchiveException with the given cause (CArchiveException::endOfFile, ...).
[[noreturn]] void AfxThrowArchiveException(int cause, LPCTSTR lpszArchiveName = nullptr);
/// Throws CFileException with the given cause and operating-system error number.
[[noreturn]] void AfxThrowFileException(int cause, LONG lOsError = -1, LPCTSTR lpszFileName = nullptr);
/// Throws CMemoryException.
[[noreturn]] void AfxThrowMemoryException();
/// Throws CNotSupportedException.
[[noreturn]] void AfxThrowNotSupportedException();
