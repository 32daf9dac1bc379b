#include <corlith/framework/Utf.h>

namespace corlith {
namespace {

void AppendCodePoint(std::string& out, char32_t cp) {
  if (cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) cp = 0xFFFD;
  if (cp < 0x80) {
    out.push_back(static_cast<char>(cp));
  } else if (cp < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else if (cp < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  }
}

bool IsContinuation(unsigned char c) { return (c & 0xC0) == 0x80; }

}  // namespace

std::size_t Utf8CharLength(std::string_view s, std::size_t pos) {
  const auto lead = static_cast<unsigned char>(s[pos]);
  std::size_t n = 1;
  if (lead >= 0xC2 && lead <= 0xDF) {
    n = 2;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    n = 3;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    n = 4;
  }
  if (pos + n > s.size()) return 1;
  for (std::size_t i = 1; i < n; ++i) {
    if (!IsContinuation(static_cast<unsigned char>(s[pos + i]))) return 1;
  }
  return n;
}

std::size_t Utf8PreviousCharStart(std::string_view s, std::size_t end) {
  // Step back over at most three continuation bytes, then confirm that the lead byte
  // found really spans up to `end`; otherwise the last byte stands alone.
  std::size_t start = end - 1;
  for (int i = 0; i < 3 && start > 0 && IsContinuation(static_cast<unsigned char>(s[start])); ++i) --start;
  if (start + Utf8CharLength(s, start) == end) return start;
  return end - 1;
}

std::string Utf16ToUtf8(std::u16string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t cp = text[i];
    if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
        text[i + 1] <= 0xDFFF) {
      cp = 0x10000 + ((cp - 0xD800) << 10) + (text[i + 1] - 0xDC00);
      ++i;
    }
    AppendCodePoint(out, cp);
  }
  return out;
}

std::string WideToUtf8(std::wstring_view text) {
  if constexpr (sizeof(wchar_t) == 2) {
    return Utf16ToUtf8(std::u16string_view(reinterpret_cast<const char16_t*>(text.data()), text.size()));
  } else {
    std::string out;
    out.reserve(text.size());
    for (wchar_t wc : text) AppendCodePoint(out, static_cast<char32_t>(wc));
    return out;
  }
}

}  // namespace corlith
