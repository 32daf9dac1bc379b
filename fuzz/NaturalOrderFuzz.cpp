// CompareStringA on arbitrary pairs: 0 or 1, never both a before b and b before a
// unless the lengths differ (the shorter-first rule is one-sided by design: a shorter a
// is before exactly when b is not before it), and never a before itself.
#include <corlith/text/NaturalOrder.h>

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider in(data, size);
  const std::string a = in.ConsumeRandomLengthString(256);
  const std::string b = in.ConsumeRemainingBytesAsString();
  const int ab = corlith::NaturalBefore(a, b);
  const int ba = corlith::NaturalBefore(b, a);
  if ((ab != 0 && ab != 1) || (ba != 0 && ba != 1)) std::abort();
  if (a.size() != b.size() && ab == ba) std::abort();
  if (corlith::NaturalBefore(a, a) != 0) std::abort();
  return 0;
}
