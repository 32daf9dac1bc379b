// Loads each value-layer array from arbitrary bytes: the first byte picks the class,
// the rest is the archive. Hostile counts, foreign headers and short data must end in
// an archive exception or a silently shorter array, never in a crash or a leak; what
// was loaded must store again.
#include "FuzzArchive.h"

#include <corlith/values/Values.h>

namespace {

template <typename T>
void Run(const std::uint8_t* data, std::size_t size) {
  T value;
  corlith::fuzz::LoadFromBytes(data, size, [&](CArchive& ar) { value.Serialize(ar); });
  corlith::fuzz::StoreAgain(value);
  // A deep copy holds as many elements (values may be NaN, so == is not asked).
  T copy(value);
  if (copy.GetSize() != value.GetSize()) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::uint8_t selector = data[0];
  ++data;
  --size;
  switch (selector % 10) {
    case 0:
      Run<CArrayPointD>(data, size);
      break;
    case 1:
      Run<CArrayArrayPointD>(data, size);
      break;
    case 2:
      Run<CArrayPoint3D>(data, size);
      break;
    case 3:
      Run<CArrayPointN>(data, size);
      break;
    case 4:
      Run<CArrayPointN_Array>(data, size);
      break;
    case 5:
      Run<C2PointDArray>(data, size);
      break;
    case 6:
      Run<C4PointDArray>(data, size);
      break;
    case 7:
      Run<C5PointDArray>(data, size);
      break;
    case 8:
      Run<C2IndexArray>(data, size);
      break;
    default:
      Run<CArrayRectD>(data, size);
      break;
  }
  return 0;
}
