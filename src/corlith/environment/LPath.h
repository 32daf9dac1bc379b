// CLPath: one path string with the folder operations that need no KTUtility instance
// (the parent path, the executable's and a module's folders, the absolute-path rule).
// Paths are read separator-agnostically: "\" and "/" both separate.
#pragma once

#include <corlith/framework/String.h>

class CLPath {
 public:
  CLPath() = default;
  CLPath(const CString& path) : m_strPath(path) {}  // NOLINT(google-explicit-constructor): hosts convert
  CLPath(const CLPath&) = default;
  CLPath& operator=(const CLPath&) = default;
  virtual ~CLPath() = default;

  CString GetPath() const { return m_strPath; }
  void SetPath(const CString& path) { m_strPath = path; }

  /// GetParentPath(GetPath()).
  CString GetParentPath() const;
  /// Cuts before the last separator, again while that separator was the last character:
  /// "C:\a\b\" and "C:\a\b" give "C:\a"; a text without separator gives "".
  /// An empty path gives "" (deliberately safe: the original never returned for it).
  static CString GetParentPath(const CString& path);
  /// The running executable's folder, as KTUtility::GetCurModuleDir.
  static CString GetCurModuleDir();
  /// A loaded module's folder, or "", as KTUtility::GetModuleDir.
  static CString GetModuleDir(const CString& moduleName);
  /// On an upper-cased, blank-trimmed copy: 0 when empty; 1 when the first ":" stands at
  /// index 1 (also after a non-letter, as in the original), for two leading separators (a
  /// network path) and, on POSIX, for any leading separator; else 0.
  static int IsAbsolutePath(const CString& path);

 private:
  CString m_strPath;
};
