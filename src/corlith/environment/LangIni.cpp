#include <corlith/environment/LangIni.h>

#include <utility>

CString CLangIni::GetPath() const { return m_strPath; }

void CLangIni::SetPath(CString path) { m_strPath = std::move(path); }
