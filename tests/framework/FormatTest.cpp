#include <corlith/framework/Format.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace corlith {
namespace {

// What the C library prints for a format and values of the exact C types.
template <typename... A>
std::string Ref(const char* format, A... values) {
  const int n = std::snprintf(nullptr, 0, format, values...);
  std::string s(static_cast<std::size_t>(n), '\0');
  std::snprintf(s.data(), s.size() + 1, format, values...);
  return s;
}

struct Row {
  const char* format;
  std::vector<FormatArg> args;
  std::string expected;
};

std::string Run(const Row& row) { return FormatV(row.format, row.args); }

void CheckRows(const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    SCOPED_TRACE(row.format);
    EXPECT_EQ(Run(row), row.expected);
  }
}

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

TEST(Format, OrdinaryDirectivesMatchCLibrary) {
  CheckRows({
      {"%d", {42}, Ref("%d", 42)},
      {"%d", {INT_MIN}, Ref("%d", INT_MIN)},
      {"%i|%d", {0, -7}, Ref("%i|%d", 0, -7)},
      {"%ld", {LONG_MIN}, Ref("%ld", LONG_MIN)},
      {"%lld", {LLONG_MAX}, Ref("%lld", LLONG_MAX)},
      {"%I64d", {std::int64_t{INT64_MIN}}, Ref("%lld", static_cast<long long>(INT64_MIN))},
      {"%I64u", {UINT64_MAX}, Ref("%llu", static_cast<unsigned long long>(UINT64_MAX))},
      {"%qd", {-5LL}, Ref("%lld", -5LL)},
      {"%hd", {70000}, Ref("%hd", 70000)},
      {"%hhu", {300}, Ref("%hhu", 300)},
      {"%hhd", {200}, Ref("%hhd", 200)},
      {"%02d", {5}, Ref("%02d", 5)},
      {"%+05d", {-5}, Ref("%+05d", -5)},
      {"% d", {5}, Ref("% d", 5)},
      {"%.0d", {0}, Ref("%.0d", 0)},
      {"%u", {-1}, Ref("%u", UINT_MAX)},
      {"%x", {-1}, Ref("%x", UINT_MAX)},
      {"%X", {0xBEEFu}, Ref("%X", 0xBEEFu)},
      {"%#x", {255}, Ref("%#x", 255)},
      {"%#o", {8}, Ref("%#o", 8)},
      {"%lu", {ULONG_MAX}, Ref("%lu", ULONG_MAX)},
      {"%zu", {SIZE_MAX}, Ref("%zu", SIZE_MAX)},
      {"%08X", {0xABCDu}, Ref("%08X", 0xABCDu)},
      {"%g", {0.1}, Ref("%g", 0.1)},
      {"%g", {1e300}, Ref("%g", 1e300)},
      {"%g", {-0.0}, Ref("%g", -0.0)},
      {"%f", {kNan}, Ref("%f", kNan)},
      {"%f|%e", {kInf, -kInf}, Ref("%f|%e", kInf, -kInf)},
      {"%.3g", {1234.5}, "1.23e+03"},
      {"%.*f", {2, 3.14159}, Ref("%.*f", 2, 3.14159)},
      {"%*.*f|", {10, 3, -2.5}, Ref("%*.*f|", 10, 3, -2.5)},
      {"%+e", {12345.678}, Ref("%+e", 12345.678)},
      {"%#.0f", {3.0}, Ref("%#.0f", 3.0)},
      {"%a", {1.0}, Ref("%a", 1.0)},
      {"%Lf", {2.5}, Ref("%Lf", 2.5L)},
      {"%f", {1e300}, Ref("%f", 1e300)},
      {"%s", {"text"}, "text"},
      {"%-10s|", {"left"}, Ref("%-10s|", "left")},
      {"%10s|", {"right"}, Ref("%10s|", "right")},
      {"%5.1s|", {"abc"}, Ref("%5.1s|", "abc")},
      {"%c%c", {'o', 'k'}, "ok"},
      {"%-3c|", {'z'}, Ref("%-3c|", 'z')},
      {"100%%", {}, "100%"},
      {"%p", {static_cast<const void*>(&kNan)}, Ref("%p", static_cast<const void*>(&kNan))},
      {"%p", {nullptr}, Ref("%p", static_cast<const void*>(nullptr))},
      // Longer than the stack buffer: the result is written straight into the string.
      {"%300d|%-280.270f", {7, 1.5}, Ref("%300d|%-280.270f", 7, 1.5)},
  });
}

TEST(Format, VariadicFrontEndAndAppend) {
  EXPECT_EQ(FormatText("%d-%s", 3, "x"), "3-x");
  EXPECT_EQ(FormatText("%s=%d", std::string("n"), true), "n=1");
  std::string out = "keep:";
  const FormatArg args[] = {FormatArg(12), FormatArg("ab")};
  AppendFormatV(out, "%d%s", args);
  EXPECT_EQ(out, "keep:12ab");
}

TEST(Format, IntegerArgumentIsNarrowedAsTheCallingConventionWould) {
  EXPECT_EQ(FormatText("%d", std::int64_t{0x1'0000'0005}), "5");
  EXPECT_EQ(FormatText("%I32d", std::int64_t{0x1'0000'0005}), "5");
  EXPECT_EQ(FormatText("%lld", std::int64_t{0x1'0000'0005}), "4294967301");
  EXPECT_EQ(FormatText("%Iu", SIZE_MAX), Ref("%zu", SIZE_MAX));
  EXPECT_EQ(FormatText("%x", static_cast<const void*>(reinterpret_cast<void*>(0x1234))), "1234");
}

TEST(Format, MissingArgumentsProduceNothing) {
  CheckRows({
      {"%d %s", {5}, "5 "},
      {"[%d]", {}, "[]"},
      {"[%*d]", {}, "[]"},
      {"[%*d]", {8}, "[]"},
      {"[%.*f]", {2}, "[]"},
      {"[%*.*f]", {8}, "[]"},
      {"[%*.*f]", {8, 2}, "[]"},
      {"[%d]%%", {}, "[]%"},
  });
}

TEST(Format, MistypedArgumentsAreConvertedAndConsumed) {
  CheckRows({
      {"%d|%d", {"abc", 7}, "|7"},
      {"%f|%s", {"abc", "next"}, "|next"},
      {"%d", {3.9}, "3"},
      {"%d", {-3.9}, "-3"},
      {"%d", {1e300}, Ref("%d", INT_MAX)},
      {"%d", {-1e300}, Ref("%d", INT_MIN)},
      {"%d", {kNan}, "0"},
      {"%lld", {kInf}, Ref("%lld", LLONG_MAX)},
      {"%lld", {9.3e18}, Ref("%lld", LLONG_MAX)},
      {"%llu", {1.8e19}, "18000000000000000000"},
      {"%u", {-1.5}, "0"},
      {"%hhd", {1e9}, "127"},
      {"%c", {65.7}, "A"},
      {"%.2f", {3}, "3.00"},
      {"%.0f", {UINT64_MAX}, "18446744073709551616"},
      {"%s", {42}, "42"},
      {"%5s|", {-7}, "   -7|"},
      {"%.2s", {12345}, "12"},
      {"%s", {UINT64_MAX}, "18446744073709551615"},
      {"%s", {2.5}, "2.5"},
      {"%s", {nullptr}, Ref("%p", static_cast<const void*>(nullptr))},
  });
  // "%p" of a string prints where it is, as C does.
  const char* text = "abc";
  EXPECT_EQ(FormatText("%p", text), Ref("%p", static_cast<const void*>(text)));
}

TEST(Format, StarWidthAndPrecisionFollowC) {
  CheckRows({
      {"%*d|", {-5, 42}, Ref("%*d|", -5, 42)},
      {"%-*d|", {-5, 42}, Ref("%-*d|", -5, 42)},
      {"%.*f", {-1, 3.14159}, Ref("%.*f", -1, 3.14159)},
      {"%.*s|", {-1, "whole"}, "whole|"},
      // A text where a width belongs gives no width, but is still consumed.
      {"%*d|", {"w", 42}, "42|"},
  });
  // INT_MIN can't be negated as an int; it must still mean "left, clamped".
  const std::string s = FormatText("%*d", INT_MIN, 7);
  ASSERT_EQ(s.size(), static_cast<std::size_t>(kMaxFormatWidth));
  EXPECT_EQ(s.front(), '7');
}

TEST(Format, NullStringPrintsNullMarker) {
  const char* none = nullptr;
  EXPECT_EQ(FormatText("%s", none), "(null)");
  EXPECT_EQ(FormatText("%8s|", none), "  (null)|");
  EXPECT_EQ(FormatText("%.3s|", none), "(nu|");
}

TEST(Format, PercentNWritesNothing) {
  int target = 1234;
  EXPECT_EQ(FormatText("a%nb%d", &target, 5), "ab5");
  EXPECT_EQ(target, 1234);
}

TEST(Format, TextIsReadOnlyWithinItsView) {
  // Exactly sized heap blocks with no terminator: any read past them trips ASan.
  const auto bare = std::make_unique<char[]>(4);
  std::memcpy(bare.get(), "abcd", 4);
  const std::string_view view(bare.get(), 4);
  EXPECT_EQ(FormatText("%s|", view), "abcd|");
  EXPECT_EQ(FormatText("%.2s|", view), "ab|");
  EXPECT_EQ(FormatText("%.10s|", view), "abcd|");
  EXPECT_EQ(FormatText("%-6s|", view), "abcd  |");
  EXPECT_EQ(FormatText("%s", view.substr(0, 3)), "abc");

  const auto withNul = std::make_unique<char[]>(4);
  std::memcpy(withNul.get(), "a\0cd", 4);
  EXPECT_EQ(FormatText("[%s]", std::string_view(withNul.get(), 4)), "[a]");
  EXPECT_EQ(FormatText("[%4s]", std::string_view(withNul.get(), 4)), "[   a]");

  // The format itself is a view too.
  const auto format = std::make_unique<char[]>(3);
  std::memcpy(format.get(), "x%d", 3);
  EXPECT_EQ(FormatText(std::string_view(format.get(), 3), 9), "x9");
  EXPECT_EQ(FormatText(std::string_view(format.get(), 2), 9), "x%");
}

TEST(Format, HugeWidthAndPrecisionAreClamped) {
  const std::string wide = FormatText("%999999999999d", 1);
  ASSERT_EQ(wide.size(), static_cast<std::size_t>(kMaxFormatWidth));
  EXPECT_EQ(wide.back(), '1');
  EXPECT_EQ(FormatText("%-99999999999999999999s|", "a").size(),
            static_cast<std::size_t>(kMaxFormatWidth) + 1);
  EXPECT_EQ(FormatText("%.999999999999f", 1.0).size(), static_cast<std::size_t>(kMaxFormatWidth) + 2);
  EXPECT_EQ(FormatText("%*d", INT_MAX, 1).size(), static_cast<std::size_t>(kMaxFormatWidth));
}

TEST(Format, MalformedDirectivesAreCopiedAndConsumeNothing) {
  CheckRows({
      {"abc%", {1}, "abc%"},
      {"%-5", {1}, "%-5"},
      {"%l", {1}, "%l"},
      {"%d %l", {1, 2}, "1 %l"},
      {"%.*", {1}, "%.*"},
      {"%y %d", {5}, "%y 5"},
      {"%*y %d", {5}, "%*y 5"},
      {"%5k|%s", {"t"}, "%5k|t"},
      {"%lhd %d", {5}, "%lhd 5"},
  });
  // A NUL byte is no conversion letter either.
  EXPECT_EQ(FormatText(std::string_view("a%\0d", 4), 5), std::string_view("a%\0d", 4));
}

}  // namespace
}  // namespace corlith
