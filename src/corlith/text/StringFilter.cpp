#include <corlith/text/StringFilter.h>

#include <corlith/framework/Ascii.h>

#include <charconv>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

namespace corlith {

namespace {

using ascii::IsDigit;

enum class Kind { Literal, Any, One, Digit, Range };

struct Token {
  Kind kind;
  std::string text;  // Literal
  double lo = 0;     // Range
  double hi = 0;
};

struct Pattern {
  std::vector<Token> tokens;
  bool hasAny = false;
  bool hasRange = false;
  std::size_t fixedLength = 0;  // literals, "?" and "#"
};

void AddLiteral(Pattern& p, std::string& literal) {
  if (literal.empty()) return;
  p.fixedLength += literal.size();
  p.tokens.push_back({Kind::Literal, std::move(literal)});
  literal.clear();
}

void AddSpecial(Pattern& p, std::string& literal, Kind kind) {
  AddLiteral(p, literal);
  if (kind == Kind::Any) p.hasAny = true;
  if (kind == Kind::One || kind == Kind::Digit) ++p.fixedLength;
  p.tokens.push_back({kind, {}});
}

// A decimal reading that is defined for any length: a value beyond double's range is
// infinite, a text with no number is 0.
double ReadDecimal(std::string_view text) {
  double v = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), v, std::chars_format::fixed);
  if (ec == std::errc::result_out_of_range) return HUGE_VAL;
  return ec == std::errc() ? v : 0.0;
}

// "<m..n>" starting at filter[at]; the index of its ">" or npos when it is not one.
std::size_t ParseRange(std::string_view f, std::size_t at, double& lo, double& hi) {
  const std::size_t dots = f.find("..", at + 1);
  if (dots == std::string_view::npos) return std::string_view::npos;
  const std::size_t close = f.find('>', dots + 2);
  if (close == std::string_view::npos) return std::string_view::npos;
  const std::string_view m = f.substr(at + 1, dots - at - 1);
  const std::string_view n = f.substr(dots + 2, close - dots - 2);
  // Empty bounds and a bound of dots alone qualify too, and read as 0 (as atof reads them).
  if (!ascii::AllDigits(m)) return std::string_view::npos;
  for (const char c : n) {
    if (!IsDigit(c) && c != '.') return std::string_view::npos;
  }
  lo = ReadDecimal(m);
  hi = ReadDecimal(n);
  if (lo > hi) std::swap(lo, hi);
  return close;
}

Pattern Tokenize(std::string_view f, bool rich) {
  Pattern p;
  std::string literal;
  for (std::size_t i = 0; i < f.size(); ++i) {
    const char c = f[i];
    if (c == '*') {
      AddSpecial(p, literal, Kind::Any);
    } else if (c == '?') {
      AddSpecial(p, literal, Kind::One);
    } else if (c == '#') {
      AddSpecial(p, literal, Kind::Digit);
    } else if (rich && c == '\'') {
      literal += i + 1 < f.size() ? f[++i] : c;
    } else if (rich && c == '<' && !p.hasRange) {
      double lo = 0;
      double hi = 0;
      const std::size_t close = ParseRange(f, i, lo, hi);
      if (close == std::string_view::npos) {
        literal += c;
        continue;
      }
      AddLiteral(p, literal);
      p.hasRange = true;
      p.tokens.push_back({Kind::Range, {}, lo, hi});
      i = close;
    } else {
      literal += c;
    }
  }
  AddLiteral(p, literal);
  return p;
}

// The length of the number at the front of text (0 when no digit stands there).
std::size_t NumberLength(std::string_view text) {
  std::size_t n = 0;
  while (n < text.size() && IsDigit(text[n])) ++n;
  if (n > 0 && n + 1 < text.size() && text[n] == '.' && IsDigit(text[n + 1])) {
    n += 2;
    while (n < text.size() && IsDigit(text[n])) ++n;
  }
  return n;
}

enum class Sweep { Match, NoMatch, Rest };

// Whether the occurrence of a literal at `end` (its first character after it) suits the
// token that follows the literal.
bool SuitsNext(std::string_view rest, std::size_t end, const Token* next) {
  if (end >= rest.size()) return true;
  if (next->kind == Kind::Digit || next->kind == Kind::Range) return IsDigit(rest[end]);
  return !IsDigit(rest[end]);
}

Sweep SweepOnce(const Pattern& p, std::string_view target, std::string_view& rest) {
  const auto& t = p.tokens;
  const bool searching = !t.empty() && t[0].kind == Kind::Any;
  std::size_t k = 0;
  // A failed token of a filter that begins with "*" drops `drop` characters and starts
  // the sweep over; any other failure ends the match.
  auto fail = [&](std::size_t drop) {
    if (!searching || k == 0) return false;
    rest.remove_prefix(std::min(drop, rest.size()));
    k = 0;
    return true;
  };
  while (k < t.size()) {
    const Token& tok = t[k];
    switch (tok.kind) {
      case Kind::Literal:
        if (rest.starts_with(tok.text)) {
          rest.remove_prefix(tok.text.size());
          ++k;
        } else if (!fail(1)) {
          return Sweep::NoMatch;
        }
        break;
      case Kind::Digit:
        if (rest.empty()) return Sweep::NoMatch;
        if (IsDigit(rest[0])) {
          rest.remove_prefix(1);
          ++k;
        } else if (!fail(1)) {
          return Sweep::NoMatch;
        }
        break;
      case Kind::One:
        // deliberate: unlike "#", a digit here never restarts the search.
        if (rest.empty() || IsDigit(rest[0])) return Sweep::NoMatch;
        rest.remove_prefix(1);
        ++k;
        break;
      case Kind::Range: {
        const std::size_t n = NumberLength(rest);
        const double v = n ? ReadDecimal(rest.substr(0, n)) : 0.0;
        if (n && v >= tok.lo && v <= tok.hi) {
          rest.remove_prefix(n);
          ++k;
        } else if (rest.empty() || !fail(n ? n : 1)) {
          return Sweep::NoMatch;
        }
        break;
      }
      case Kind::Any: {
        if (k + 1 == t.size()) return Sweep::Match;
        if (rest.empty()) return Sweep::NoMatch;
        const Token& next = t[k + 1];
        const bool nextIsLast = k + 2 == t.size();
        if (next.kind == Kind::One) {
          if (nextIsLast) return IsDigit(target.back()) ? Sweep::NoMatch : Sweep::Match;
          while (!rest.empty() && IsDigit(rest[0])) rest.remove_prefix(1);
        } else if (next.kind == Kind::Digit) {
          if (nextIsLast) return IsDigit(target.back()) ? Sweep::Match : Sweep::NoMatch;
          while (!rest.empty() && !IsDigit(rest[0])) rest.remove_prefix(1);
        } else if (next.kind == Kind::Range) {
          while (!rest.empty() && !IsDigit(rest[0])) rest.remove_prefix(1);
        } else if (next.kind == Kind::Literal) {
          if (nextIsLast) return rest.ends_with(next.text) ? Sweep::Match : Sweep::NoMatch;
          std::size_t at = rest.find(next.text);
          if (at == std::string_view::npos) return Sweep::NoMatch;
          const Token& after = t[k + 2];
          if (after.kind != Kind::Literal && after.kind != Kind::Any) {
            while (!SuitsNext(rest, at + next.text.size(), &after)) {
              const std::size_t later = rest.find(next.text, at + 1);
              if (later == std::string_view::npos) break;
              at = later;
            }
          }
          rest.remove_prefix(at);
        }
        ++k;
        break;
      }
    }
  }
  return Sweep::Rest;
}

int MatchPattern(const Pattern& p, std::string_view target) {
  if (!p.hasAny) {
    if (!p.hasRange && target.size() != p.fixedLength) return 0;
    if (p.hasRange && target.size() < p.fixedLength + 1) return 0;
  }
  if (target.empty()) return 1;
  std::string_view rest = target;
  for (;;) {
    const std::size_t before = rest.size();
    const Sweep s = SweepOnce(p, target, rest);
    if (s != Sweep::Rest) return s == Sweep::Match ? 1 : 0;
    if (rest.empty()) return 1;
    if (rest.size() == before || !p.hasAny) return 0;
  }
}

enum class Op { None, And, Or, AndNot };

struct Frame {
  int result = 1;
  Op pending = Op::And;
  bool dead = false;  // a term came without an operator
  bool Decided() const {
    return dead || pending == Op::None || (pending == Op::Or ? result == 1 : result == 0);
  }
  void Fold(int value) {
    if (pending == Op::None) {
      dead = true;
      return;
    }
    if (pending == Op::And) result = result && value;
    if (pending == Op::Or) result = result || value;
    if (pending == Op::AndNot) result = result && !value;
    pending = Op::None;
  }
  int Value() const { return dead ? 0 : result; }
  void Operator(char c) {
    if (c == '&') pending = Op::And;
    if (c == ',') pending = Op::Or;
    if (c == '~') pending = Op::AndNot;
  }
};

}  // namespace

int MatchFilterTerm(std::string_view target, std::string_view filter) {
  return MatchPattern(Tokenize(filter, false), target);
}

int MatchRichFilterTerm(std::string_view target, std::string_view filter) {
  const std::string upperTarget = ascii::UpperCopy(target);
  return MatchPattern(Tokenize(ascii::UpperCopy(filter), true), upperTarget);
}

int MatchFilterCombination(std::string_view target, std::string_view filter, bool rich) {
  if (filter.empty()) return 0;
  if (filter == "[*]") return 1;
  // The nesting is kept on an explicit stack so that no depth of brackets can exhaust
  // the call stack; a bracket is a simple term until a "[" inside it makes it nested.
  std::vector<Frame> frames(1);
  bool inTerm = false;
  std::size_t termStart = 0;
  for (std::size_t i = 0; i < filter.size(); ++i) {
    const char c = filter[i];
    if (rich && c == '\'') {
      ++i;
      continue;
    }
    if (!inTerm) {
      if (c == '[') {
        inTerm = true;
        termStart = i + 1;
      } else if (c == ']') {
        if (frames.size() > 1) {
          const int value = frames.back().Value();
          frames.pop_back();
          frames.back().Fold(value);
        }
      } else {
        frames.back().Operator(c);
      }
    } else if (c == '[') {
      frames.emplace_back();
      for (std::size_t j = termStart; j < i; ++j) {
        if (rich && filter[j] == '\'') {
          ++j;
        } else {
          frames.back().Operator(filter[j]);
        }
      }
      termStart = i + 1;
    } else if (c == ']') {
      Frame& frame = frames.back();
      if (frame.Decided()) {
        frame.Fold(frame.result);  // the term's value cannot change the result
      } else {
        const std::string_view term = filter.substr(termStart, i - termStart);
        frame.Fold(rich ? MatchRichFilterTerm(target, term) : MatchFilterTerm(target, term));
      }
      inTerm = false;
    }
  }
  return frames.front().Value();
}

}  // namespace corlith
