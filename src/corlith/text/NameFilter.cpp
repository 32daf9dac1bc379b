// The name-filter language of CLString::IsSuitedForFilter. It runs once per net, part or
// layer name of a board, so it works on views of the caller's text and never allocates.
#include <corlith/framework/Ascii.h>
#include <corlith/framework/Object.h>
#include <corlith/text/LString.h>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace {

using View = std::string_view;

enum Mode { kEquals = 0, kStartsWith = 1, kEndsWith = -1, kContains = 2 };

constexpr View kWildcard = "[*]";

using corlith::ascii::AllDigits;
using corlith::ascii::IsDigit;

// The rules read single characters of texts that may be too short; where the original read
// past the end, a missing character is the invalid-argument exception instead.
char CharAt(View s, std::ptrdiff_t i) {
  if (i < 0 || i >= static_cast<std::ptrdiff_t>(s.size())) AfxThrowInvalidArgException();
  return s[static_cast<std::size_t>(i)];
}

View Last(View s, std::size_t n) { return s.substr(s.size() - std::min(n, s.size())); }

enum class Place { None, Start, End, Alone };

struct DigitMarker {
  Place place = Place::None;
  int count = -1;  // -1 for "*"
  View body;
};

DigitMarker FindDigitMarker(View body) {
  DigitMarker m;
  m.body = body;
  const std::size_t p = body.find("[N");
  if (p == View::npos) return m;
  const bool atStart = p == 0;
  const bool atEnd = body.size() >= 4 && p == body.size() - 4;
  if (!atStart && !atEnd) return m;
  if (body.size() < p + 4 || body[p + 3] != ']') return m;
  const char c = body[p + 2];
  if (!IsDigit(c) && c != '*') return m;
  m.count = c == '*' ? -1 : c - '0';
  if (body.size() == 4) {
    m.place = Place::Alone;
    m.body = View();
  } else if (atStart) {
    m.place = Place::Start;
    m.body = body.substr(4);
  } else {
    m.place = Place::End;
    m.body = body.substr(0, p);
  }
  return m;
}

int SubFilter(View target, View filter, int mode) {
  const DigitMarker m = FindDigitMarker(filter);
  const View x = m.body;
  if (m.place == Place::None) {
    switch (mode) {
      case kEquals:
        return target == x;
      case kStartsWith:
        return target.starts_with(x);
      case kEndsWith:
        return target.ends_with(x);
      case kContains:
        return target.find(x) != View::npos;
      default:
        return 0;
    }
  }
  const bool star = m.count < 0;
  const auto d = static_cast<std::size_t>(star ? 0 : m.count);
  const std::size_t k = target.find(x);
  const bool found = k != View::npos;
  const View before = found ? target.substr(0, k) : View();
  const View after = found ? target.substr(k + x.size()) : View();
  // "[Nd]X" in the ends-with and contains modes tests the body's own last characters.
  const auto bodyEndsInDigits = [&] { return x.size() >= d && AllDigits(x.substr(x.size() - d)); };
  const auto digitBeforeLast = [&] {
    return IsDigit(CharAt(before, static_cast<std::ptrdiff_t>(before.size()) - 2));
  };

  switch (mode) {
    case kEquals:
      switch (m.place) {
        case Place::End:
          return k == 0 && AllDigits(after) && (star || after.size() == d);
        case Place::Start:
          return found && k == target.size() - x.size() && AllDigits(before) && (star || before.size() == d);
        default:
          return AllDigits(target);  // the count is deliberately not checked
      }
    case kEndsWith:
      switch (m.place) {
        case Place::End:
          return k == 0 && (star || (after.size() == d && AllDigits(after)));
        case Place::Start:
          return found && (star ? digitBeforeLast() : bodyEndsInDigits());
        default:
          if (star) return IsDigit(CharAt(target, static_cast<std::ptrdiff_t>(target.size()) - 1));
          return AllDigits(Last(target, d));
      }
    case kStartsWith:
      switch (m.place) {
        case Place::End:
          return k == 0 && (star || AllDigits(after.substr(0, d)));
        case Place::Start:
          return found && AllDigits(before) && (star || before.size() == d);
        default:
          return IsDigit(CharAt(target, 0));
      }
    case kContains:
      switch (m.place) {
        case Place::End:
          if (!found) return 0;
          if (star) return IsDigit(CharAt(after, 0));
          return after.size() >= d && AllDigits(after.substr(0, d));
        case Place::Start:
          return found && (star ? digitBeforeLast() : bodyEndsInDigits());
        default:
          return std::any_of(target.begin(), target.end(), IsDigit);
      }
    default:
      return 0;
  }
}

}  // namespace

namespace corlith {

int MatchNameFilter(std::string_view target, std::string_view filter) {
  int mode = kEquals;
  View body = filter;
  if (body.starts_with(kWildcard)) {
    body.remove_prefix(kWildcard.size());
    mode = kEndsWith;
    const std::size_t q = body.find(kWildcard);
    if (q != View::npos && q == body.size() - kWildcard.size()) {
      body.remove_suffix(kWildcard.size());
      mode = kContains;
    }
  } else {
    const std::size_t q = body.find(kWildcard);
    if (q != View::npos && q == body.size() - kWildcard.size()) {
      body.remove_suffix(kWildcard.size());
      mode = kStartsWith;
    }
  }
  return SubFilter(target, body, mode);
}

}  // namespace corlith

int CLString::IsSuitedForFilter(CString& strTarget, CString& strFilter) {
  return corlith::MatchNameFilter(strTarget.view(), strFilter.view());
}

int CLString::IsSuitedForFilter_Sub(CString& strTarget, CString& strFilter) {
  return corlith::MatchNameFilter(strTarget.view(), strFilter.view());
}

int CLString::IsSuitedForFilter_Sub_Filter(CString& strTarget, CString& strFilter, int nMode) {
  return SubFilter(strTarget.view(), strFilter.view(), nMode);
}
