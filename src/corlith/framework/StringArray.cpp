#include <corlith/framework/StringArray.h>

void CUIntArray::Serialize(CArchive&) { AfxThrowNotSupportedException(); }
