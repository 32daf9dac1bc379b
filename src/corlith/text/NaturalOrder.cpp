#include <corlith/text/NaturalOrder.h>

#include <corlith/framework/Ascii.h>

#include <climits>
#include <cstddef>
#include <cstdint>

namespace corlith {

namespace {

using corlith::ascii::IsDigit;

// atoi of a collecting text, kept incrementally: the texts only ever hold digits, so
// the value is the saturated decimal reading of everything appended so far.
struct Collected {
  std::int64_t value = 0;
  std::size_t length = 0;
  void Append(char digit) {
    ++length;
    if (value <= INT_MAX) value = value * 10 + (digit - '0');
  }
  std::int64_t Number() const { return value > INT_MAX ? INT_MAX : value; }
};

int WalkLonger(std::string_view a, std::string_view b) {
  Collected na;
  Collected nb;
  std::size_t i = 0;
  while (i < b.size()) {
    if (IsDigit(a[i]) && IsDigit(b[i])) {
      for (std::size_t j = i; j < a.size() && IsDigit(a[j]); ++j) na.Append(a[j]);
      for (; i < b.size() && IsDigit(b[i]); ++i) nb.Append(b[i]);
      if (na.Number() < nb.Number()) return 1;
      if (na.Number() > nb.Number()) return 0;
      if (na.length > nb.length) return 1;
      if (na.length < nb.length) return 0;
    } else {
      const auto ca = static_cast<signed char>(a[i]);
      const auto cb = static_cast<signed char>(b[i]);
      if (ca < cb) return 1;
      if (ca > cb) return 0;
    }
    ++i;
  }
  return 0;
}

}  // namespace

int NaturalBefore(std::string_view a, std::string_view b) {
  if (a.size() < b.size()) return WalkLonger(b, a) != 1 ? 1 : 0;
  return WalkLonger(a, b);
}

}  // namespace corlith
