// Loads the property records and their arrays from arbitrary bytes: the first byte
// picks the class, the rest is the archive. Loading ends in an archive exception or a
// silently shorter result, never in a crash or a leak; what was loaded stores again, a
// deep copy of it compares equal, and storing what the stored bytes load gives the same
// bytes.
#include "FuzzArchive.h"

#include <corlith/services/Property.h>

#include <iterator>

namespace {

template <typename T>
void Run(const std::uint8_t* data, std::size_t size) {
  T value;
  corlith::fuzz::LoadFromBytes(data, size, [&](CArchive& ar) { value.Serialize(ar); });
  const corlith::test::Bytes stored = corlith::test::Store(value);
  T copy(value);
  if (!(copy == value)) std::abort();
  T again;
  corlith::test::Load(stored, again);
  if (corlith::test::Store(again) != stored) std::abort();
}

using Runner = void (*)(const std::uint8_t*, std::size_t);

// The first input byte indexes this table; new classes go at the end so that saved
// inputs keep their meaning.
constexpr Runner kRunners[] = {
    Run<CGPropertyArray>,
    Run<CLPropertyArray>,
    Run<CGProperty>,
    Run<CLProperty>,
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  kRunners[data[0] % std::size(kRunners)](data + 1, size - 1);
  return 0;
}
