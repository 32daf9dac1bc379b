// Stores and loads a string through a Corlith built inside the host's own tree.
#include <corlith/Corlith.h>

#include <cstdio>

int main() {
  CMemFile file;
  {
    CArchive ar(&file, CArchive::store);
    ar << CString("GND");
    ar.Close();
  }
  file.SeekToBegin();
  CString loaded;
  {
    CArchive ar(&file, CArchive::load);
    ar >> loaded;
  }
  const auto bytes = file.GetData();
  const bool ok = bytes.size() == 4 && bytes[0] == 3 && loaded == "GND";
  std::printf("Corlith %s as a subproject: %s\n", corlith::kVersionText, ok ? "ok" : "FAILED");
  return ok ? 0 : 1;
}
