// The manual and page list reader on arbitrary bytes, read both ways: each result matches
// a plain line-by-line reading (lines at "\n", one "\r" dropped, pieces between "&" runs,
// exactly two pieces make an entry, the first entry of an id wins, ids as strtoll clamped
// to int reads them), and the two kinds differ only where "//" comment lines put an entry
// at id 0.
#include <corlith/environment/Menual.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace {

void Check(bool condition) {
  if (!condition) std::abort();
}

int ReferenceNumber(std::string_view field) {
  const std::string copy(field);  // strtoll stops at a zero byte, as the reader does
  const long long value = std::strtoll(copy.c_str(), nullptr, 10);
  return static_cast<int>(std::clamp<long long>(value, INT_MIN, INT_MAX));
}

std::map<int, std::string> Reference(std::string_view text, bool pages) {
  std::map<int, std::string> map;
  std::size_t start = 0;
  while (start < text.size()) {
    std::size_t end = text.find('\n', start);
    if (end == std::string_view::npos) end = text.size();
    std::string_view line = text.substr(start, end - start);
    start = end + 1;
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (line.empty() || (pages && line.substr(0, 2) == "//")) continue;
    std::vector<std::string_view> pieces;
    std::size_t at = 0;
    while (at < line.size()) {
      while (at < line.size() && line[at] == '&') ++at;
      const std::size_t begin = at;
      while (at < line.size() && line[at] != '&') ++at;
      if (at > begin) pieces.push_back(line.substr(begin, at - begin));
    }
    if (pieces.size() == 2) map.emplace(ReferenceNumber(pieces[0]), std::string(pieces[1]));
  }
  return map;
}

std::map<int, std::string> Read(std::string_view text, corlith::ManualListKind kind) {
  std::map<int, CString> parsed;
  corlith::ParseManualList(text, kind, parsed);
  std::map<int, std::string> map;
  for (const auto& [id, value] : parsed) {
    Check(!value.IsEmpty());
    Check(value.view().find('&') == std::string_view::npos);
    Check(value.view().find('\n') == std::string_view::npos);
    map.emplace(id, value.str());
  }
  return map;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  std::map<int, std::string> manuals = Read(text, corlith::ManualListKind::ManualIds);
  std::map<int, std::string> pages = Read(text, corlith::ManualListKind::HtmlPages);
  Check(manuals == Reference(text, false));
  Check(pages == Reference(text, true));
  manuals.erase(0);
  pages.erase(0);
  Check(manuals == pages);
  return 0;
}
