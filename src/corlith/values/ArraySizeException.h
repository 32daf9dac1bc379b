// CArraySizeException: offered to host code for reporting a collection whose size no
// longer fits a 32-bit int. Nothing inside the library throws it.
#pragma once

#include <corlith/framework/Exceptions.h>

class CArraySizeException : public CException {
 public:
  /// strName names the collection that overflowed.
  explicit CArraySizeException(CString strName);
  ~CArraySizeException() override = default;

  /// Ignores both arguments; shows "Error : <name> size is over Interger limit!\n" in a
  /// message box and returns 1. The misspelling and the line feed are deliberate.
  int ReportError(UINT nType = 0, UINT nMessageID = 0) override;

  CString m_strName;

 protected:
  CString Message() const override;
};
