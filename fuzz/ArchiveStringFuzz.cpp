// Loads CStrings (both the 8-bit and the wide form) from arbitrary bytes; what loads
// must store and load back unchanged.
#include "FuzzArchive.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  CString text;
  bool loaded = false;
  corlith::fuzz::LoadFromBytes(data, size, [&](CArchive& ar) {
    ar >> text;
    loaded = true;
  });
  if (!loaded) return 0;
  corlith::test::LoadingArchive in(corlith::test::Stored([&](CArchive& ar) { ar << text; }));
  CString again;
  in.Archive() >> again;
  if (again != text) std::abort();
  return 0;
}
