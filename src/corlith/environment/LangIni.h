// CLangIni: among the host's user-interface language settings, the path of the language
// file. The other settings belong to the host; this library carries only the path.
#pragma once

#include <corlith/framework/String.h>

class CLangIni {
 public:
  /// A copy of the language file's path.
  CString GetPath() const;
  void SetPath(CString path);

 private:
  CString m_strPath;
};
