// CLFile: the framework's binary file class under the library's own name, so that hosts
// derive from one library type. It adds no fields and no behaviour of its own.
#pragma once

#include <corlith/framework/File.h>
#include <corlith/framework/Object.h>

class CLFile : public CFile {
 public:
  CLFile() = default;
  /// Opens the file or throws CFileException, as CFile does.
  CLFile(LPCTSTR lpszFileName, UINT nOpenFlags) : CFile(lpszFileName, nOpenFlags) {}
  ~CLFile() override = default;

  /// Stores the name unchanged; a null name throws CInvalidArgException.
  void SetFilePath(LPCTSTR lpszNewName) override {
    if (lpszNewName == nullptr) AfxThrowInvalidArgException();
    CFile::SetFilePath(lpszNewName);
  }
};
