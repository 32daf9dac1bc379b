// The tokenizers on arbitrary text: quoted phrases, whole-string and set delimiters. No
// crash, no empty token from the set splitter, and the twins agree.
#include <corlith/text/Tokenizer.h>

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider in(data, size);
  const std::string delimiters = in.ConsumeRandomLengthString(6);
  CString source(in.ConsumeRemainingBytesAsString());

  CStringArray phrases;
  CTokenizer::GetStringArrayFromStringToken(source, phrases);

  CStringArray byFull;
  CTokenizer full;
  full.GetTokenArrayByFullString(byFull, source, CString(delimiters));

  CStringArray a;
  CStringArray b;
  CTokenizer(source, CString(delimiters)).GetTokenArray(a);
  CLTokenizer(source, CString(delimiters)).GetTokenArray(b);
  if (a.GetSize() != b.GetSize()) std::abort();
  for (INT_PTR i = 0; i < a.GetSize(); ++i) {
    if (a[i].IsEmpty() || !(a[i] == b[i])) std::abort();
  }
  return 0;
}
