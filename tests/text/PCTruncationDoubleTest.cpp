// CPCTruncationDouble against the stored results, cell by cell, including the "%.1e"
// position quirk (n - 1 decimal places for ordinary magnitudes), the three-digit-exponent
// path, the "0.0" rule of the decimal-places mode and RoundValue.
#include <corlith/text/PCTruncationDouble.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <string>

namespace {

struct Column {
  const char* name;
  int cutType;  // 0 decimal places, 1 significant digits
  int displayType;
  int digits;  // significant digits or decimal places
};

constexpr Column kColumns[] = {
    {"significant 3 [1]", 1, 1, 3}, {"significant 3 [0]", 1, 0, 3}, {"significant 3 [2]", 1, 2, 3},
    {"decimal 3 [1]", 0, 1, 3},     {"decimal 2 [0]", 0, 0, 2},     {"decimal 2 [2]", 0, 2, 2},
};

struct Row {
  double v;
  const char* cells[6];
};

constexpr Row kWorkedResults[] = {
    {1234.5678, {"1234.57", "1234.57", "1234.56", "1234.568", "1234.57", "1234.56"}},
    {1.2345, {"1.23", "1.24", "1.23", "1.235", "1.24", "1.23"}},
    {0.00012345, {"0", "0.01", "0", "0.0", "0.0", "0.0"}},
    {-2.5, {"-2.5", "-2.5", "-2.5", "-2.500", "-2.50", "-2.50"}},
    {-0.0004, {"0", "0", "-0.01", "0.0", "0.0", "0.0"}},
    {0.0, {"0", "0", "0", "0.0", "0.0", "0.0"}},
    {123456789.0, {"123456789", "123456789", "123456789", "123456789.000", "123456789.00", "123456789.00"}},
};

CPCTruncationDouble RuleFor(const Column& c) {
  return c.cutType == 1 ? CPCTruncationDouble(1, c.displayType, c.digits, 0)
                        : CPCTruncationDouble(0, c.displayType, 10, c.digits);
}

TEST(PCTruncationDouble, WorkedResultsCellByCell) {
  for (const Row& row : kWorkedResults) {
    for (int c = 0; c < 6; ++c) {
      SCOPED_TRACE(testing::Message() << "v " << row.v << ", " << kColumns[c].name);
      const CPCTruncationDouble rule = RuleFor(kColumns[c]);
      EXPECT_EQ(std::string(rule.ExpressFloatingPointValue(row.v).GetString()), row.cells[c]);
      EXPECT_EQ(rule.ExpressFloatingPointValue2Double(row.v), std::atof(row.cells[c]));
    }
  }
}

TEST(PCTruncationDouble, DefaultsAndFieldOrder) {
  const CPCTruncationDouble d;
  EXPECT_EQ(d.GetValueCutType(), 0);
  EXPECT_EQ(d.GetSignificantdigit(), 3);
  EXPECT_EQ(d.GetDecimalPoint(), 3);
  EXPECT_EQ(d.GetDisplayType(), 1);
  // cut type, display type, significant digits, decimal point
  CPCTruncationDouble e(1, 2, 5, 7);
  EXPECT_EQ(e.GetValueCutType(), 1);
  EXPECT_EQ(e.GetDisplayType(), 2);
  EXPECT_EQ(e.GetSignificantdigit(), 5);
  EXPECT_EQ(e.GetDecimalPoint(), 7);
  e.SetData(0, 1, 4, 2);
  EXPECT_EQ(e.GetDecimalPoint(), 2);
  EXPECT_EQ(e.GetSignificantdigit(), 4);
}

TEST(PCTruncationDouble, PositionQuirkAndThreeDigitExponents) {
  const struct {
    double v;
    int digits;
    const char* text;
  } rows[] = {
      // Two-digit exponents: n - 1 decimal places whatever the magnitude, and "%g" then
      // keeps six significant digits of that.
      {98765.4321, 3, "98765.4"},
      {0.5, 1, "1"},
      {0.5, 2, "0.5"},
      {1.2345e-5, 5, "0"},
      {1.2345e-5, 7, "0.000012"},  // "%g" gave 1.2e-05: redone with "%.6f"
      // Three-digit exponents take the real position: three significant digits remain.
      {1.2345e150, 3, nullptr},
      {-1.2345e150, 3, nullptr},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << row.v);
    const CPCTruncationDouble rule(1, 1, row.digits, 0);
    if (row.text) {
      EXPECT_EQ(std::string(rule.ExpressFloatingPointValue(row.v).GetString()), row.text);
    } else {
      const double cut = rule.ExpressFloatingPointValue2Double(row.v);
      EXPECT_NEAR(cut / std::copysign(1.23e150, row.v), 1.0, 1e-12);
    }
  }
  // A tiny value below 1e-99 in magnitude also takes the real position.
  const CPCTruncationDouble rule(1, 1, 3, 0);
  EXPECT_NEAR(rule.ExpressFloatingPointValue2Double(4.5678e-120) / 4.57e-120, 1.0, 1e-12);
}

TEST(PCTruncationDouble, UnknownTypesAndExtremes) {
  EXPECT_EQ(CPCTruncationDouble(2, 1, 3, 3).ExpressFloatingPointValue(1.5), CString(""));
  EXPECT_EQ(CPCTruncationDouble(-1, 1, 3, 3).ExpressFloatingPointValue2Double(1.5), 0.0);
  // Display type 7: no cut, but the decimal-places mode still keeps only p + 1 places.
  EXPECT_EQ(CPCTruncationDouble(0, 7, 3, 2).ExpressFloatingPointValue(1.2389), CString("1.24"));
  EXPECT_EQ(CPCTruncationDouble(0, 7, 3, 2).ExpressFloatingPointValue(1.2381), CString("1.24"));
  EXPECT_EQ(CPCTruncationDouble(1, 7, 3, 2).ExpressFloatingPointValue(1.23456), CString("1.23456"));
  // Extreme digit counts and non-finite values give text, never undefined behaviour.
  const double inf = std::numeric_limits<double>::infinity();
  for (const int digits : {INT_MIN, -5, 0, 400, INT_MAX}) {
    for (const double v : {0.0, 1.5, -1.5, 1e308, inf, -inf, std::nan("")}) {
      SCOPED_TRACE(testing::Message() << digits << " " << v);
      for (const int display : {0, 1, 2, 9}) {
        const CString a = CPCTruncationDouble(1, display, digits, 0).ExpressFloatingPointValue(v);
        const CString b = CPCTruncationDouble(0, display, 3, digits).ExpressFloatingPointValue(v);
        EXPECT_LE(a.GetLength(), 1 << 17);  // the formatter bounds any precision
        EXPECT_FALSE(b.IsEmpty());
      }
    }
  }
}

TEST(PCTruncationDouble, RoundValueHalvesAwayFromZero) {
  const struct {
    double v;
    int n;
    double expected;
  } rows[] = {
      {2.345, 2, 2.35}, {-2.345, 2, -2.35},  {2.5, 0, 3.0},     {-2.5, 0, -3.0},
      {0.125, 2, 0.13}, {1.23449, 3, 1.234}, {-0.0004, 3, 0.0}, {7.0, 0, 7.0},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << row.v << " to " << row.n);
    EXPECT_EQ(CPCTruncationDouble::RoundValue(row.v, row.n), row.expected);
  }
}

}  // namespace
