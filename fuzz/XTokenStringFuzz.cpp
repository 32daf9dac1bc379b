// XTokenString on arbitrary text, delimiters and switches: no crash, the returned count is
// the array's size, and maxTokens is never exceeded.
#include <corlith/text/Tokenizer.h>

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider in(data, size);
  const int maxTokens = in.ConsumeIntegralInRange<int>(-2, 8);
  const int trim = in.ConsumeBool();
  const int escape = in.ConsumeBool();
  const int quote = in.ConsumeBool();
  const int keepEmpty = in.ConsumeBool();
  const std::string delimiters = in.ConsumeRandomLengthString(8);
  const std::string source = in.ConsumeRemainingBytesAsString();
  CStringArray result;
  const ULONGLONG n =
      XTokenString(source.c_str(), delimiters.c_str(), result, maxTokens, trim, escape, quote, keepEmpty);
  if (n != static_cast<ULONGLONG>(result.GetSize())) std::abort();
  if (maxTokens >= 1 && result.GetSize() > maxTokens) std::abort();
  return 0;
}
