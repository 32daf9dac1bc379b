// The natural order on arbitrary texts: CompareStringA answers 0 or 1, never a before
// itself, never both ways, always one way between texts of different lengths; and SortStringArray of any list
// gives exactly the insertion procedure's array (corlith/test/NaturalSortOracle.h), every input one random
// list.
#include <corlith/test/NaturalSortOracle.h>
#include <corlith/text/NaturalOrder.h>
#include <corlith/text/StringEx.h>

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider in(data, size);
  CStringArray list;
  // Short texts: the interesting cases are many near-equal names, not long ones, and the
  // quadratic oracle must stay fast enough for the fuzzer to try many lists.
  while (in.remaining_bytes() > 0 && list.GetSize() < 64) list.Add(in.ConsumeRandomLengthString(24));
  for (INT_PTR i = 0; i + 1 < list.GetSize(); ++i) {
    const std::string a(list[i].view());
    const std::string b(list[i + 1].view());
    const int ab = corlith::NaturalBefore(a, b);
    const int ba = corlith::NaturalBefore(b, a);
    if ((ab != 0 && ab != 1) || (ba != 0 && ba != 1)) std::abort();
    if (ab == 1 && ba == 1) std::abort();
    if (a.size() != b.size() && ab == ba) std::abort();  // a shorter text is before or after
    if (corlith::NaturalBefore(a, a) != 0) std::abort();
  }
  CStringArray expected;
  expected.Copy(list);
  corlith::test::InsertionSortReference(expected);
  CStringSorter::SortStringArray(list);
  if (list.GetSize() != expected.GetSize()) std::abort();
  for (INT_PTR i = 0; i < list.GetSize(); ++i) {
    if (list[i] != expected[i]) std::abort();
  }
  return 0;
}
