// The listing-pattern matcher against a plain recursive reference written from the
// rules alone: both must agree on every short pattern and name, and the matcher must
// ignore ASCII case. Input: the pattern, a line feed, the name.
#include <corlith/platform/Path.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

// The reference tries every way exhaustively, so inputs stay short.
constexpr std::size_t kMaxPattern = 8;
constexpr std::size_t kMaxName = 16;

// Characters: a UTF-8 lead byte with its continuation bytes, any other byte alone.
std::vector<std::string> Characters(std::string_view text) {
  std::vector<std::string> out;
  std::size_t i = 0;
  while (i < text.size()) {
    const auto lead = static_cast<unsigned char>(text[i]);
    std::size_t want = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
    std::size_t n = 1;
    while (n < want && i + n < text.size() && (static_cast<unsigned char>(text[i + n]) & 0xC0) == 0x80) ++n;
    out.emplace_back(text.substr(i, n));
    i += n;
  }
  return out;
}

enum Kind { kLiteral, kStar, kDosStar, kDosQm, kDosDot };

struct Reference {
  std::vector<Kind> kinds;
  std::vector<std::string> pattern;
  std::vector<std::string> name;
  std::size_t lastDot = SIZE_MAX;

  static std::string Lower(std::string s) {
    for (char& c : s) {
      if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    }
    return s;
  }

  bool Match(std::size_t p, std::size_t n) const {
    if (p == pattern.size()) return n == name.size();
    const bool end = n == name.size();
    const bool dot = !end && name[n] == ".";
    switch (kinds[p]) {
      case kStar:
        return Match(p + 1, n) || (!end && Match(p, n + 1));
      case kDosStar:
        return Match(p + 1, n) || (!end && !(dot && n == lastDot) && Match(p, n + 1));
      case kDosQm:
        return (end || dot) ? Match(p + 1, n) : Match(p + 1, n + 1);
      case kDosDot:
        return end ? Match(p + 1, n) : dot && Match(p + 1, n + 1);
      case kLiteral:
        return !end && Lower(pattern[p]) == Lower(name[n]) && Match(p + 1, n + 1);
    }
    return false;
  }

  static bool Matches(std::string_view patternText, std::string_view nameText) {
    if (patternText == "*.*") patternText = "*";
    Reference r;
    r.pattern = Characters(patternText);
    r.name = Characters(nameText);
    for (std::size_t i = 0; i < r.name.size(); ++i) {
      if (r.name[i] == ".") r.lastDot = i;
    }
    for (std::size_t i = 0; i < r.pattern.size(); ++i) {
      const std::string& c = r.pattern[i];
      const std::string next = i + 1 < r.pattern.size() ? r.pattern[i + 1] : "";
      if (c == "?") {
        r.kinds.push_back(kDosQm);
      } else if (c == "*") {
        r.kinds.push_back(next == "." ? kDosStar : kStar);
      } else if (c == "." && (next.empty() || next == "?" || next == "*")) {
        r.kinds.push_back(kDosDot);
      } else {
        r.kinds.push_back(kLiteral);
      }
    }
    return r.Match(0, 0);
  }
};

std::string FlipAsciiCase(std::string_view text) {
  std::string out(text);
  for (char& c : out) {
    if (c >= 'a' && c <= 'z') {
      c = static_cast<char>(c - 32);
    } else if (c >= 'A' && c <= 'Z') {
      c = static_cast<char>(c + 32);
    }
  }
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::size_t split = input.find('\n');
  if (split == std::string_view::npos) return 0;
  const std::string_view pattern = input.substr(0, split);
  const std::string_view name = input.substr(split + 1);
  if (pattern.size() > kMaxPattern || name.size() > kMaxName) return 0;

  const bool matches = corlith::platform::MatchesListingPattern(pattern, name);
  if (matches != Reference::Matches(pattern, name)) std::abort();
  if (corlith::platform::MatchesListingPattern(FlipAsciiCase(pattern), name) != matches) std::abort();
  if (corlith::platform::MatchesListingPattern(pattern, FlipAsciiCase(name)) != matches) std::abort();
  return 0;
}
