// The name filter on arbitrary targets and filters: the only outcome besides 0 and 1 is
// the documented invalid-argument exception.
#include <corlith/framework/Exceptions.h>
#include <corlith/text/LString.h>

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider in(data, size);
  CString filter(in.ConsumeRandomLengthString(32));
  CString target(in.ConsumeRemainingBytesAsString());
  const CString filterBefore(filter);
  const CString targetBefore(target);
  try {
    const int r = CLString::IsSuitedForFilter(target, filter);
    if (r != 0 && r != 1) std::abort();
  } catch (const CInvalidArgException&) {
    // A rule read a character that does not exist: documented.
  }
  if (!(filter == filterBefore) || !(target == targetBefore)) std::abort();
  return 0;
}
