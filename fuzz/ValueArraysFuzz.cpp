// Loads each value-layer array (and the records with nested parts) from arbitrary
// bytes: the first byte picks the class,
// the rest is the archive. Hostile counts, foreign headers and short data must end in
// an archive exception or a silently shorter array, never in a crash or a leak; what
// was loaded must store again.
#include "FuzzArchive.h"

#include <corlith/values/Values.h>

#include <iterator>

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

// Single records with nested parts: loading must end cleanly and store again.
template <typename T>
void RunRecord(const std::uint8_t* data, std::size_t size) {
  T value;
  corlith::fuzz::LoadFromBytes(data, size, [&](CArchive& ar) { value.Serialize(ar); });
  corlith::fuzz::StoreAgain(value);
}

using Runner = void (*)(const std::uint8_t*, std::size_t);

// The first input byte indexes this table; new classes go at the end so that saved
// inputs keep their meaning.
constexpr Runner kRunners[] = {
    Run<CArrayPointD>,
    Run<CArrayArrayPointD>,
    Run<CArrayPoint3D>,
    Run<CArrayPointN>,
    Run<CArrayPointN_Array>,
    Run<C2PointDArray>,
    Run<C4PointDArray>,
    Run<C5PointDArray>,
    Run<C2IndexArray>,
    Run<CArrayRectD>,
    Run<CArrayPointF>,
    Run<CArrayRectF>,
    Run<CFRectArray>,
    Run<CRectFLArray>,
    Run<C2FPointsArray>,
    Run<CArrayD>,
    Run<CArrayN>,
    Run<CArrayB>,
    Run<CArrayF>,
    Run<CArrayNL>,
    Run<CArrayPoint>,
    Run<CNArrayL>,
    Run<CArrayArrayD>,
    Run<CArrayArrayN>,
    Run<CArrayArrayB>,
    Run<CExPtrArrayArrayN>,
    Run<CDWordArrayArray>,
    Run<CDWordArrayArrayArray>,
    Run<CDWordArraySet>,
    Run<CIntPairArray>,
    Run<CIntPairArrayArray>,
    Run<CIntDoublePairArray>,
    Run<CIntStringPairArray>,
    Run<CStringPairArray>,
    Run<CStringPairArrayArray>,
    Run<CStringStringArrayPairArray>,
    Run<CStringPairSet>,
    Run<CDWordPairSet>,
    RunRecord<CCircleF>,
    RunRecord<CStringStringArrayPair>,
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::uint8_t selector = data[0];
  kRunners[selector % std::size(kRunners)](data + 1, size - 1);
  return 0;
}
