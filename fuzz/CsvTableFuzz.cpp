// The CSV loader on arbitrary file contents: it loads or reports 0, and what it loaded
// saves and loads back to the same table once blanks (which the save removes) are gone.
#include <corlith/test/TempFolder.h>
#include <corlith/text/StringEx.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const corlith::test::TempFolder folder("csvfuzz");
  const std::string path =
      folder.Write("table.csv", std::string_view(reinterpret_cast<const char*>(data), size));
  CStringArrayArray table;
  const int loaded = table.LoadToCSV_File(CString(path));
  if (loaded != 0 && loaded != 1) std::abort();
  // Cells with blanks, quotes or line ends do not survive a save; skip those tables.
  bool clean = true;
  for (const CStringArray* row : table) {
    for (const CString& cell : *row) {
      if (cell.view().find_first_of(std::string_view(" \"\r\n\0", 5)) != std::string_view::npos)
        clean = false;
    }
    if (row->IsEmpty()) clean = false;
  }
  if (clean) {
    table.SaveToCSV_File(CString(path));
    CStringArrayArray again;
    again.LoadToCSV_File(CString(path));
    if (!(again == table)) std::abort();
  }
  return 0;
}
