// ASCII character classes and case folding, independent of the C locale: the library's
// text rules (case-insensitive compares, digit runs, default trimming) touch ASCII only,
// so a byte of a multi-byte UTF-8 character is never a letter, digit or blank here.
#pragma once

#include <string>
#include <string_view>

namespace corlith::ascii {

constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool IsUpper(char c) { return c >= 'A' && c <= 'Z'; }
constexpr bool IsLower(char c) { return c >= 'a' && c <= 'z'; }
constexpr bool IsAlpha(char c) { return IsUpper(c) || IsLower(c); }
/// The C locale's white space: blank and 0x09 to 0x0D (tab, line feed, vertical tab,
/// form feed, carriage return), the default set of the framework's Trim.
constexpr bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

constexpr char ToUpper(char c) { return IsLower(c) ? static_cast<char>(c - 'a' + 'A') : c; }
constexpr char ToLower(char c) { return IsUpper(c) ? static_cast<char>(c - 'A' + 'a') : c; }

/// A copy of s with its ASCII letters upper-cased; every other byte as it is.
inline std::string UpperCopy(std::string_view s) {
  std::string out(s);
  for (char& c : out) c = ToUpper(c);
  return out;
}
/// A copy of s with its ASCII letters lower-cased; every other byte as it is.
inline std::string LowerCopy(std::string_view s) {
  std::string out(s);
  for (char& c : out) c = ToLower(c);
  return out;
}

/// True when every character is a digit (also for the empty text).
constexpr bool AllDigits(std::string_view s) {
  for (char c : s) {
    if (!IsDigit(c)) return false;
  }
  return true;
}

}  // namespace corlith::ascii
