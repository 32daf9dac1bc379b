// The library's one printf-compatible formatter. Every "%..." text of the library,
// including texts that come from users or files and are used as a format, goes
// through FormatV, which knows how many arguments it was given and their types:
// it never reads past them, and a directive with no argument left produces nothing.
#pragma once

#include <concepts>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

namespace corlith {

/// One formatting argument, captured with its type. Built implicitly from integers,
/// floating-point values, characters, C strings, standard strings, anything with
/// GetString()/GetLength() (CString) and pointers.
class FormatArg {
 public:
  enum class Kind { Signed, Unsigned, Floating, Text, Pointer };

  template <std::signed_integral T>
  FormatArg(T v) : m_kind(Kind::Signed), m_signed(static_cast<std::int64_t>(v)) {}
  template <std::unsigned_integral T>
  requires(!std::same_as<T, bool>) FormatArg(T v)
      : m_kind(Kind::Unsigned), m_unsigned(static_cast<std::uint64_t>(v)) {}
  FormatArg(bool v) : m_kind(Kind::Signed), m_signed(v ? 1 : 0) {}
  template <std::floating_point T>
  FormatArg(T v) : m_kind(Kind::Floating), m_floating(static_cast<double>(v)) {}
  template <typename T>
  requires std::is_enum_v<T> FormatArg(T v) : FormatArg(static_cast<std::underlying_type_t<T>>(v)) {}
  FormatArg(const char* s)
      : m_kind(Kind::Text), m_text(s), m_textLength(s ? std::string_view(s).size() : 0) {}
  FormatArg(char* s) : FormatArg(static_cast<const char*>(s)) {}
  FormatArg(std::string_view s) : m_kind(Kind::Text), m_text(s.data()), m_textLength(s.size()) {}
  FormatArg(const std::string& s) : FormatArg(std::string_view(s)) {}
  template <typename S>
  requires requires(const S& s) {
    { s.GetString() } -> std::convertible_to<const char*>;
    s.GetLength();
  }
  FormatArg(const S& s)
      : FormatArg(std::string_view(s.GetString(), static_cast<std::size_t>(s.GetLength()))) {}
  FormatArg(const void* p) : m_kind(Kind::Pointer), m_pointer(p) {}
  FormatArg(std::nullptr_t) : FormatArg(static_cast<const void*>(nullptr)) {}

  Kind kind() const { return m_kind; }
  // Each accessor below is meaningful only for its own kind(); the others would read
  // an inactive union member.
  std::int64_t asSigned() const { return m_signed; }
  std::uint64_t asUnsigned() const { return m_unsigned; }
  double asFloating() const { return m_floating; }
  /// The text; data() is null for a null C string.
  std::string_view asText() const { return {m_text, m_textLength}; }
  bool isNullText() const { return m_kind == Kind::Text && m_text == nullptr; }
  const void* asPointer() const { return m_pointer; }

 private:
  Kind m_kind;
  union {
    std::int64_t m_signed;
    std::uint64_t m_unsigned;
    double m_floating;
    const char* m_text;
    const void* m_pointer;
  };
  std::size_t m_textLength = 0;
};

/// Formats `format` with printf semantics over `args`.
///
/// - Ordinary directives ("%d", "%ld", "%5.2f", "%-8s", "%*.*f", "%#x", "%I64d", ...)
///   give exactly what the C library gives for the same values.
/// - A directive (or a "*" width/precision) with no argument left produces nothing.
/// - Arguments are converted to what the directive asks for: an integer for "%f"
///   becomes a double, a floating value for "%d" is truncated toward zero (clamped to
///   the range of the directive's type, NaN gives 0), a number for "%s" prints as by
///   "%d"/"%u"/"%g"/"%p", text for a numeric directive produces nothing ("%p" of a
///   text prints its address, as in C). The argument is consumed either way.
/// - A null C string prints "(null)". "%n" writes nothing and consumes its argument.
/// - Widths and precisions above kMaxFormatWidth are clamped to it.
/// - An incomplete directive at the end of the text is copied as it stands.
std::string FormatV(std::string_view format, std::span<const FormatArg> args);

/// Appends the formatted text to `out` (same rules as FormatV).
void AppendFormatV(std::string& out, std::string_view format, std::span<const FormatArg> args);

/// Largest width or precision honoured in a directive; larger ones are clamped.
inline constexpr int kMaxFormatWidth = 1 << 16;

/// Variadic front end: FormatText("%d-%s", 3, "x") == "3-x".
template <typename... Args>
std::string FormatText(std::string_view format, const Args&... args) {
  const FormatArg list[sizeof...(Args) + 1] = {FormatArg(args)..., FormatArg(0)};
  return FormatV(format, std::span<const FormatArg>(list, sizeof...(Args)));
}

}  // namespace corlith
