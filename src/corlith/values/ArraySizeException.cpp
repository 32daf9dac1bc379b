#include <corlith/framework/Format.h>
#include <corlith/framework/HostPrompt.h>
#include <corlith/values/ArraySizeException.h>

#include <utility>

CArraySizeException::CArraySizeException(CString strName) : m_strName(std::move(strName)) {}

CString CArraySizeException::Message() const {
  return CString(corlith::FormatText("Error : %s size is over Interger limit!\n", m_strName));
}

int CArraySizeException::ReportError(UINT, UINT) {
  AfxMessageBox(Message().GetString());
  return 1;
}
