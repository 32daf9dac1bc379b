// Both filter families and the combination rule on arbitrary targets and filters: the
// result is always 0 or 1, the combination of one term equals the term in brackets,
// and case never matters to the rich family.
#include <corlith/text/StringFilter.h>

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider in(data, size);
  const std::string filter = in.ConsumeRandomLengthString(64);
  const std::string target = in.ConsumeRemainingBytesAsString();
  const int simple = corlith::MatchFilterTerm(target, filter);
  const int rich = corlith::MatchRichFilterTerm(target, filter);
  const int combined = corlith::MatchFilterCombination(target, filter, false);
  const int richCombined = corlith::MatchFilterCombination(target, filter, true);
  for (const int r : {simple, rich, combined, richCombined}) {
    if (r != 0 && r != 1) std::abort();
  }
  if (filter.find_first_of("[]") == std::string::npos && !filter.empty() && filter != "*") {
    if (corlith::MatchFilterCombination(target, "[" + filter + "]", false) != simple) std::abort();
  }
  std::string lower = target;
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  if (corlith::MatchRichFilterTerm(lower, filter) != rich) std::abort();
  return 0;
}
