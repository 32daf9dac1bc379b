// UTF-8 helpers for the framework's 8-bit text: character boundaries and the
// conversion of wide (UTF-16 / UTF-32) text into UTF-8.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace corlith {

/// Length in bytes of the UTF-8 character starting at s[pos] (1 for an invalid or
/// truncated sequence, so any byte string can be walked).
std::size_t Utf8CharLength(std::string_view s, std::size_t pos);

/// Start of the UTF-8 character that ends just before s[end] (end > 0).
std::size_t Utf8PreviousCharStart(std::string_view s, std::size_t end);

/// UTF-16 code units to UTF-8; unpaired surrogates become U+FFFD.
std::string Utf16ToUtf8(std::u16string_view text);

/// Platform wide text (UTF-16 on Windows, UTF-32 on POSIX) to UTF-8; invalid code
/// points become U+FFFD.
std::string WideToUtf8(std::wstring_view text);

}  // namespace corlith
