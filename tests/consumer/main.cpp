// Stores and loads a string through the installed library and checks the bytes.
#include <corlith/Corlith.h>

#include <cstdio>

int main() {
  CMemFile file;
  {
    CArchive ar(&file, CArchive::store);
    ar << CString("abc");
    ar.Close();
  }
  const auto bytes = file.GetData();
  const bool ok = bytes.size() == 4 && bytes[0] == 3 && bytes[1] == 'a';
  std::printf("Corlith %s from the installed package: %s\n", corlith::kVersionText, ok ? "ok" : "FAILED");
  return ok ? 0 : 1;
}
