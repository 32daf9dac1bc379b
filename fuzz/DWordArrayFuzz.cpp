// Loads a CDWordArray from arbitrary bytes: a hostile count must end in an archive
// exception, never in memory exhaustion.
#include "FuzzArchive.h"

#include <corlith/framework/StringArray.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  CDWordArray values;
  corlith::fuzz::LoadFromBytes(data, size, [&](CArchive& ar) { values.Serialize(ar); });
  corlith::fuzz::StoreAgain(values);
  return 0;
}
