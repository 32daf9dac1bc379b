// printf semantics over a typed argument list. Each directive is parsed here, its
// argument converted to exactly the C type the directive names, and the text produced
// by the C library's snprintf with a rebuilt one-directive format; so ordinary
// directives match the C library, while missing or mistyped arguments can no longer
// make it read past the argument list.
#include <corlith/framework/Format.h>

#include <corlith/framework/Ascii.h>
#include <corlith/framework/Numeric.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <limits>
#include <optional>
#include <type_traits>

namespace corlith {
namespace {

// Flags are kept as a bit set: a repeated flag is legal in C but would only make the
// rebuilt format longer.
enum Flag : unsigned {
  kLeft = 1U << 0,       // '-'
  kPlus = 1U << 1,       // '+'
  kSpace = 1U << 2,      // ' '
  kAlternate = 1U << 3,  // '#'
  kZero = 1U << 4,       // '0'
  kGrouping = 1U << 5,   // '\''
};

// Canonical length modifiers; the Windows and BSD spellings (I64, I32, I, q) are
// mapped onto these so that the C library only ever sees standard ones.
enum class Length : unsigned char { None, Char, Short, Long, LongLong, LongDouble, IntMax, Size, PtrDiff };

struct Directive {
  unsigned flags = 0;
  bool widthStar = false;
  bool hasWidth = false;
  int width = 0;
  bool precisionStar = false;
  bool hasPrecision = false;
  int precision = 0;
  Length length = Length::None;
  char conversion = 0;
};

enum class ParseResult { Complete, Incomplete, Unknown };

// Reads a run of digits, saturating: anything above kMaxFormatWidth is clamped anyway,
// and a text such as "%99999999999d" must not overflow int.
int ReadNumber(std::string_view format, std::size_t& pos) {
  int value = 0;
  while (pos < format.size() && ascii::IsDigit(format[pos])) {
    if (value <= kMaxFormatWidth) {
      value = value * 10 + (format[pos] - '0');
    }
    ++pos;
  }
  return std::min(value, kMaxFormatWidth);
}

// Parses the directive whose '%' is at format[start]; `end` receives the index just
// past the last character examined (the conversion letter, or the offending one).
ParseResult Parse(std::string_view format, std::size_t start, Directive& d, std::size_t& end) {
  std::size_t pos = start + 1;
  const auto atEnd = [&] { return pos >= format.size(); };

  for (; !atEnd(); ++pos) {
    const char c = format[pos];
    if (c == '-') {
      d.flags |= kLeft;
    } else if (c == '+') {
      d.flags |= kPlus;
    } else if (c == ' ') {
      d.flags |= kSpace;
    } else if (c == '#') {
      d.flags |= kAlternate;
    } else if (c == '0') {
      d.flags |= kZero;
    } else if (c == '\'') {
      d.flags |= kGrouping;
    } else {
      break;
    }
  }

  if (!atEnd() && format[pos] == '*') {
    d.widthStar = d.hasWidth = true;
    ++pos;
  } else if (!atEnd() && ascii::IsDigit(format[pos])) {
    d.hasWidth = true;
    d.width = ReadNumber(format, pos);
  }

  if (!atEnd() && format[pos] == '.') {
    d.hasPrecision = true;
    ++pos;
    if (!atEnd() && format[pos] == '*') {
      d.precisionStar = true;
      ++pos;
    } else {
      // A lone '.' means precision 0, which is what ReadNumber gives for no digits.
      d.precision = ReadNumber(format, pos);
    }
  }

  if (!atEnd()) {
    const auto next = [&](char c) { return pos + 1 < format.size() && format[pos + 1] == c; };
    switch (format[pos]) {
      case 'h':
        d.length = next('h') ? Length::Char : Length::Short;
        pos += d.length == Length::Char ? 2 : 1;
        break;
      case 'l':
        d.length = next('l') ? Length::LongLong : Length::Long;
        pos += d.length == Length::LongLong ? 2 : 1;
        break;
      case 'L':
        d.length = Length::LongDouble;
        ++pos;
        break;
      case 'q':
        d.length = Length::LongLong;
        ++pos;
        break;
      case 'j':
        d.length = Length::IntMax;
        ++pos;
        break;
      case 'z':
        d.length = Length::Size;
        ++pos;
        break;
      case 't':
        d.length = Length::PtrDiff;
        ++pos;
        break;
      case 'I':
        // Windows spellings: I64 is 64-bit, I32 is 32-bit (int on every target of
        // ours), a bare I is pointer-sized.
        if (format.substr(pos + 1, 2) == "64") {
          d.length = Length::LongLong;
          pos += 3;
        } else if (format.substr(pos + 1, 2) == "32") {
          d.length = Length::None;
          pos += 3;
        } else {
          d.length = Length::Size;
          ++pos;
        }
        break;
      default:
        break;
    }
  }

  if (atEnd()) {
    end = format.size();
    return ParseResult::Incomplete;
  }
  d.conversion = format[pos];
  end = pos + 1;
  // strchr would also match the terminating NUL, hence the explicit check.
  const bool known = d.conversion != '\0' && std::strchr("diuoxXfFeEgGaAcsSpn%", d.conversion) != nullptr;
  return known ? ParseResult::Complete : ParseResult::Unknown;
}

// The argument as the integer type T, the way the C ABI would see it: integers are
// reduced modulo 2^N (an int64 for "%d" keeps its low 32 bits), a pointer counts as its
// unsigned address. Text has no integer value.
template <typename T>
std::optional<T> AsInteger(const FormatArg& arg) {
  switch (arg.kind()) {
    case FormatArg::Kind::Signed:
      return static_cast<T>(arg.asSigned());
    case FormatArg::Kind::Unsigned:
      return static_cast<T>(arg.asUnsigned());
    case FormatArg::Kind::Pointer:
      return static_cast<T>(reinterpret_cast<std::uintptr_t>(arg.asPointer()));
    case FormatArg::Kind::Floating:
      return TruncateClamped<T>(arg.asFloating());
    case FormatArg::Kind::Text:
      break;
  }
  return std::nullopt;
}

std::optional<double> AsDouble(const FormatArg& arg) {
  switch (arg.kind()) {
    case FormatArg::Kind::Signed:
      return static_cast<double>(arg.asSigned());
    case FormatArg::Kind::Unsigned:
      return static_cast<double>(arg.asUnsigned());
    case FormatArg::Kind::Pointer:
      return static_cast<double>(reinterpret_cast<std::uintptr_t>(arg.asPointer()));
    case FormatArg::Kind::Floating:
      return arg.asFloating();
    case FormatArg::Kind::Text:
      break;
  }
  return std::nullopt;
}

// "%p" of a string prints where the string is, as it does in C.
const void* AsPointer(const FormatArg& arg) {
  switch (arg.kind()) {
    case FormatArg::Kind::Pointer:
      return arg.asPointer();
    case FormatArg::Kind::Text:
      return arg.asText().data();
    case FormatArg::Kind::Floating:
      return reinterpret_cast<const void*>(TruncateClamped<std::uintptr_t>(arg.asFloating()));
    case FormatArg::Kind::Signed:
      return reinterpret_cast<const void*>(static_cast<std::uintptr_t>(arg.asSigned()));
    case FormatArg::Kind::Unsigned:
      break;
  }
  return reinterpret_cast<const void*>(static_cast<std::uintptr_t>(arg.asUnsigned()));
}

// Width and precision arguments are ints, converted like a "%d" value. Text gives none.
std::optional<int> AsStarValue(const FormatArg& arg) { return AsInteger<int>(arg); }

// Calls snprintf with the star values the rebuilt format asks for, then the value.
template <typename T>
int CallSnprintf(char* buffer, std::size_t size, const char* format, int stars, int first, int second,
                 T value) {
  switch (stars) {
    case 0:
      return std::snprintf(buffer, size, format, value);
    case 1:
      return std::snprintf(buffer, size, format, first, value);
    default:
      return std::snprintf(buffer, size, format, first, second, value);
  }
}

// A rebuilt single directive with its star values.
struct Rebuilt {
  char format[24];
  int stars = 0;
  int starValues[2] = {0, 0};
};

// Formats one value and appends it. Short results (nearly all of them) go through a
// stack buffer; a longer one is written straight into `out` once its length is known.
template <typename T>
void AppendDirective(std::string& out, const Rebuilt& r, T value) {
  char buffer[256];
  const int n =
      CallSnprintf(buffer, sizeof buffer, r.format, r.stars, r.starValues[0], r.starValues[1], value);
  if (n <= 0) {
    return;  // empty, or an encoding error the C library reported
  }
  const auto length = static_cast<std::size_t>(n);
  if (length < sizeof buffer) {
    out.append(buffer, length);
    return;
  }
  const std::size_t old = out.size();
  out.resize(old + length);
  // The terminating NUL snprintf writes lands on out[size()], which may hold only NUL.
  CallSnprintf(out.data() + old, length + 1, r.format, r.stars, r.starValues[0], r.starValues[1], value);
}

// Pads `text` to the directive's width the way "%-*.*s" would, without handing the
// text to the C library: views are not NUL-terminated.
void AppendPaddedText(std::string& out, std::string_view text, bool left, int width, int precision) {
  std::size_t n = text.size();
  if (precision >= 0) {
    n = std::min(n, static_cast<std::size_t>(precision));
  }
  // A C string ends at its first NUL; a view with an embedded one prints as C would.
  if (const void* nul = n != 0 ? std::memchr(text.data(), '\0', n) : nullptr) {
    n = static_cast<std::size_t>(static_cast<const char*>(nul) - text.data());
  }
  const std::size_t pad =
      static_cast<std::size_t>(std::max(width, 0)) > n ? static_cast<std::size_t>(width) - n : 0;
  if (!left) {
    out.append(pad, ' ');
  }
  out.append(text.data(), n);
  if (left) {
    out.append(pad, ' ');
  }
}

bool IsSignedConversion(char c) { return c == 'd' || c == 'i'; }
bool IsUnsignedConversion(char c) { return c == 'u' || c == 'o' || c == 'x' || c == 'X'; }
bool IsFloatingConversion(char c) { return c != '\0' && std::strchr("fFeEgGaA", c) != nullptr; }

// Builds the single-directive format. Flags the C standard leaves undefined for the
// conversion ("%#d", "%05s", ...) are dropped so every platform prints the same.
void Rebuild(const Directive& d, int width, int precision, const char* length, Rebuilt& r) {
  const char c = d.conversion;
  const bool integer = IsSignedConversion(c) || IsUnsignedConversion(c);
  const bool floating = IsFloatingConversion(c);
  char* p = r.format;
  *p++ = '%';
  if (d.flags & kLeft) {
    *p++ = '-';
  }
  if ((IsSignedConversion(c) || floating) && (d.flags & kPlus)) {
    *p++ = '+';
  }
  if ((IsSignedConversion(c) || floating) && (d.flags & kSpace)) {
    *p++ = ' ';
  }
  if ((floating || c == 'o' || c == 'x' || c == 'X') && (d.flags & kAlternate)) {
    *p++ = '#';
  }
  if ((integer || floating) && (d.flags & kZero)) {
    *p++ = '0';
  }
  // POSIX defines the grouping flag for these only.
  if ((d.flags & kGrouping) && std::strchr("diufFgG", c) != nullptr) {
    *p++ = '\'';
  }
  if (width >= 0) {
    *p++ = '*';
    r.starValues[r.stars++] = width;
  }
  // C defines a precision for numeric and string conversions only, not for %c or %p.
  if (precision >= 0 && (integer || floating)) {
    *p++ = '.';
    *p++ = '*';
    r.starValues[r.stars++] = precision;
  }
  for (; *length != '\0'; ++length) {
    *p++ = *length;
  }
  *p++ = c;
  *p = '\0';
}

template <typename Signed, typename Unsigned>
void AppendInteger(std::string& out, const Directive& d, const FormatArg& arg, const Rebuilt& r) {
  if (IsSignedConversion(d.conversion)) {
    if (const auto v = AsInteger<Signed>(arg)) {
      AppendDirective(out, r, *v);
    }
  } else if (const auto v = AsInteger<Unsigned>(arg)) {
    AppendDirective(out, r, *v);
  }
}

const char* IntegerLengthText(Length length) {
  switch (length) {
    case Length::Char:
      return "hh";
    case Length::Short:
      return "h";
    case Length::Long:
      return "l";
    case Length::LongLong:
    case Length::LongDouble:  // "%Ld" is glibc's spelling of "%lld"
      return "ll";
    case Length::IntMax:
      return "j";
    case Length::Size:
      return "z";
    case Length::PtrDiff:
      return "t";
    case Length::None:
      break;
  }
  return "";
}

void AppendNumber(std::string& out, const Directive& d, const FormatArg& arg, int width, int precision) {
  Rebuilt r;
  const char c = d.conversion;
  if (IsFloatingConversion(c)) {
    const bool isLong = d.length == Length::LongDouble;
    Rebuild(d, width, precision, isLong ? "L" : "", r);
    if (const auto v = AsDouble(arg)) {
      if (isLong) {
        AppendDirective(out, r, static_cast<long double>(*v));
      } else {
        AppendDirective(out, r, *v);
      }
    }
    return;
  }
  if (c == 'c') {
    // Always the narrow character: "%lc" would go through the locale's wide-character
    // conversion and fail outright for most values in the C locale.
    Rebuild(d, width, precision, "", r);
    if (const auto v = AsInteger<int>(arg)) {
      AppendDirective(out, r, *v);
    }
    return;
  }
  if (c == 'p') {
    Rebuild(d, width, precision, "", r);
    AppendDirective(out, r, AsPointer(arg));
    return;
  }
  Rebuild(d, width, precision, IntegerLengthText(d.length), r);
  switch (d.length) {
    case Length::None:
      AppendInteger<int, unsigned int>(out, d, arg, r);
      break;
    case Length::Char:
      AppendInteger<signed char, unsigned char>(out, d, arg, r);
      break;
    case Length::Short:
      AppendInteger<short, unsigned short>(out, d, arg, r);
      break;
    case Length::Long:
      AppendInteger<long, unsigned long>(out, d, arg, r);
      break;
    case Length::LongLong:
    case Length::LongDouble:
      AppendInteger<long long, unsigned long long>(out, d, arg, r);
      break;
    case Length::IntMax:
      AppendInteger<std::intmax_t, std::uintmax_t>(out, d, arg, r);
      break;
    case Length::Size:
      AppendInteger<std::make_signed_t<std::size_t>, std::size_t>(out, d, arg, r);
      break;
    case Length::PtrDiff:
      AppendInteger<std::ptrdiff_t, std::make_unsigned_t<std::ptrdiff_t>>(out, d, arg, r);
      break;
  }
}

// "%s": text as it is, a number as "%d"/"%u"/"%g"/"%p" would print it.
void AppendString(std::string& out, const Directive& d, const FormatArg& arg, int width, int precision) {
  const bool left = (d.flags & kLeft) != 0;
  if (arg.kind() == FormatArg::Kind::Text) {
    AppendPaddedText(out, arg.isNullText() ? std::string_view("(null)") : arg.asText(), left, width,
                     precision);
    return;
  }
  char buffer[64];
  int n = 0;
  switch (arg.kind()) {
    case FormatArg::Kind::Signed:
      n = std::snprintf(buffer, sizeof buffer, "%lld", static_cast<long long>(arg.asSigned()));
      break;
    case FormatArg::Kind::Unsigned:
      n = std::snprintf(buffer, sizeof buffer, "%llu", static_cast<unsigned long long>(arg.asUnsigned()));
      break;
    case FormatArg::Kind::Floating:
      n = std::snprintf(buffer, sizeof buffer, "%g", arg.asFloating());
      break;
    case FormatArg::Kind::Pointer:
      n = std::snprintf(buffer, sizeof buffer, "%p", arg.asPointer());
      break;
    case FormatArg::Kind::Text:
      break;
  }
  n = std::clamp(n, 0, static_cast<int>(sizeof buffer) - 1);
  AppendPaddedText(out, std::string_view(buffer, static_cast<std::size_t>(n)), left, width, precision);
}

}  // namespace

void AppendFormatV(std::string& out, std::string_view format, std::span<const FormatArg> args) {
  std::size_t next = 0;  // next unused argument
  std::size_t pos = 0;
  while (pos < format.size()) {
    const void* found = std::memchr(format.data() + pos, '%', format.size() - pos);
    if (found == nullptr) {
      out.append(format.data() + pos, format.size() - pos);
      break;
    }
    const auto percent = static_cast<std::size_t>(static_cast<const char*>(found) - format.data());
    out.append(format.data() + pos, percent - pos);

    Directive d;
    std::size_t end = 0;
    const ParseResult parsed = Parse(format, percent, d, end);
    pos = end;
    if (parsed != ParseResult::Complete) {
      // Not a directive we understand: keep the text so the reader sees what was wrong.
      out.append(format.data() + percent, end - percent);
      continue;
    }
    if (d.conversion == '%') {
      out.push_back('%');
      continue;
    }

    // width and precision of -1 mean "none" from here on.
    bool left = (d.flags & kLeft) != 0;
    int width = d.hasWidth ? d.width : -1;
    int precision = d.hasPrecision ? d.precision : -1;
    if (d.widthStar) {
      if (next >= args.size()) {
        continue;
      }
      const std::optional<int> w = AsStarValue(args[next++]);
      width = -1;
      if (w) {
        // A negative width is a '-' flag and a positive width, as in C; widened first
        // so that INT_MIN can be negated.
        const long long wide = *w;
        left = left || wide < 0;
        width = static_cast<int>(std::min<long long>(wide < 0 ? -wide : wide, kMaxFormatWidth));
      }
    }
    if (d.precisionStar) {
      if (next >= args.size()) {
        continue;
      }
      const std::optional<int> p = AsStarValue(args[next++]);
      precision = p && *p >= 0 ? std::min(*p, kMaxFormatWidth) : -1;
    }
    if (next >= args.size()) {
      continue;
    }
    const FormatArg& arg = args[next++];
    if (left) {
      d.flags |= kLeft;
    }

    switch (d.conversion) {
      case 'n':
        break;  // consumes its argument; writing through it is the classic exploit
      case 's':
      case 'S':
        AppendString(out, d, arg, width, precision);
        break;
      default:
        AppendNumber(out, d, arg, width, precision);
        break;
    }
  }
}

std::string FormatV(std::string_view format, std::span<const FormatArg> args) {
  std::string out;
  // Room for the literal text and a typical field per argument: one allocation for
  // most lines.
  out.reserve(format.size() + 16 * args.size());
  AppendFormatV(out, format, args);
  return out;
}

}  // namespace corlith
