// The name-filter language, one table row per target and filter: every mode, every
// digit-run form (count and "*"), the irregular rules hosts rely on, and the rows where
// a rule would read a character that does not exist.
#include <corlith/framework/Exceptions.h>
#include <corlith/text/LString.h>

#include <gtest/gtest.h>

namespace {

constexpr int kThrows = -9;

struct Row {
  const char* target;
  const char* filter;
  int expected;  // 1, 0 or kThrows
};

void Check(const Row& row) {
  SCOPED_TRACE(testing::Message() << "target \"" << row.target << "\" filter \"" << row.filter << "\"");
  CString target(row.target);
  CString filter(row.filter);
  if (row.expected == kThrows) {
    EXPECT_THROW(CLString::IsSuitedForFilter(target, filter), CInvalidArgException);
  } else {
    EXPECT_EQ(CLString::IsSuitedForFilter(target, filter), row.expected);
  }
  // The caller's strings are never changed.
  EXPECT_EQ(target, CString(row.target));
  EXPECT_EQ(filter, CString(row.filter));
}

TEST(NameFilter, WildcardModesWithoutDigitRuns) {
  const Row rows[] = {
      // equals
      {"TOP", "TOP", 1},
      {"TOP_1", "TOP", 0},
      {"XTOP", "TOP", 0},
      {"top", "TOP", 0},  // case-sensitive
      {"", "", 1},
      {"A", "", 0},
      // starts with
      {"TOP_1", "TOP[*]", 1},
      {"TOP", "TOP[*]", 1},
      {"XTOP", "TOP[*]", 0},
      {"anything", "[*]", 1},  // ends with an empty body
      // ends with
      {"LAYER_TOP", "[*]TOP", 1},
      {"TOP", "[*]TOP", 1},
      {"TOPX", "[*]TOP", 0},
      {"TOPTOP", "[*]TOP", 1},
      // contains
      {"XTOPX", "[*]TOP[*]", 1},
      {"TOP", "[*]TOP[*]", 1},
      {"XTOX", "[*]TOP[*]", 0},
      {"", "[*][*]", 1},
      // a "[*]" anywhere else is literal text
      {"TO[*]P", "TO[*]P", 1},
      {"TOP", "TO[*]P", 0},
      {"TOxP", "TO[*]P", 0},
      {"A[*]B", "A[*]B[*]", 0},  // first "[*]" not at the end: equals, literal
      {"A[*]B[*]", "A[*]B[*]", 1},
      {"XA[*]", "[*]A[*]", 1},   // contains "A"
      {"A[*]B", "[*]A[*]B", 1},  // ends with "A[*]B"
      // "[N" that is not a marker is literal
      {"R[NX]", "R[NX]", 1},
      {"R1", "R[NX]", 0},
      {"A[N2]B", "A[N2]B", 1},
      {"A12B", "A[N2]B", 0},
  };
  for (const Row& row : rows) Check(row);
}

TEST(NameFilter, DigitRunsInEqualsMode) {
  const Row rows[] = {
      // X[N*]: the rest after X is digits, any number including none
      {"R", "R[N*]", 1},
      {"R1", "R[N*]", 1},
      {"R123", "R[N*]", 1},
      {"RA1", "R[N*]", 0},
      {"XR1", "R[N*]", 0},
      // X[Nd]: exactly d digits
      {"C12", "C[N2]", 1},
      {"C1", "C[N2]", 0},
      {"C123", "C[N2]", 0},
      {"C1A", "C[N2]", 0},
      {"C", "C[N0]", 1},
      // [N*]X and [Nd]X
      {"12_GND", "[N*]_GND", 1},
      {"_GND", "[N*]_GND", 1},
      {"A_GND", "[N*]_GND", 0},
      {"12_GND", "[N2]_GND", 1},
      {"1_GND", "[N2]_GND", 0},
      {"_GN", "[N*]_GND", 0},  // X must occur
      // deliberate: X must first occur where the suffix starts
      {"_GND1_GND", "[N*]_GND", 0},
      // [Nd] alone: digits only, count not checked, empty matches
      {"12345", "[N2]", 1},
      {"", "[N2]", 1},
      {"12a", "[N*]", 0},
  };
  for (const Row& row : rows) Check(row);
}

TEST(NameFilter, DigitRunsInEndsWithMode) {
  const Row rows[] = {
      // [*]X[Nd]: X at position 0, then exactly d digits
      {"NET12", "[*]NET[N2]", 1},
      {"NET1", "[*]NET[N2]", 0},
      {"NET1A", "[*]NET[N2]", 0},
      {"A_NET12", "[*]NET[N2]", 0},  // irregular: k must be 0
      // [*]X[N*]: X at position 0, then anything
      {"NETxyz", "[*]NET[N*]", 1},
      {"XNET1", "[*]NET[N*]", 0},
      // [*][Nd]X: the body's own last d characters must be digits
      {"anything_A12_here", "[*][N2]A12", 1},
      {"A12", "[*][N2]A12", 1},
      {"A1", "[*][N2]A12", 0},
      {"XAB", "[*][N2]AB", 0},
      {"12AB", "[*][N2]AB", 0},
      {"AB", "[*][N3]AB", 0},  // body shorter than d
      // [*][N*]X: second-to-last character before X is a digit
      {"1X_GND", "[*][N*]_GND", 1},
      {"XX_GND", "[*][N*]_GND", 0},
      {"X_GND", "[*][N*]_GND", kThrows},  // before is one character
      {"_GND", "[*][N*]_GND", kThrows},
      {"12", "[*][N*]_GND", 0},  // X absent: nothing read
      // [*][Nd] alone: the last d characters (fewer if shorter) are digits
      {"NET_12", "[*][N2]", 1},
      {"NET_1", "[*][N2]", 0},
      {"7", "[*][N2]", 1},
      {"", "[*][N2]", 1},
      // [*][N*] alone: the last character is a digit
      {"NET_1", "[*][N*]", 1},
      {"NET_", "[*][N*]", 0},
      {"", "[*][N*]", kThrows},
  };
  for (const Row& row : rows) Check(row);
}

TEST(NameFilter, DigitRunsInStartsWithMode) {
  const Row rows[] = {
      // X[Nd][*]: X at 0; the first d characters after it (fewer if shorter) are digits
      {"C12X", "C[N2][*]", 1},
      {"C1", "C[N2][*]", 1},
      {"C", "C[N2][*]", 1},  // the count is only an upper bound here
      {"C1X", "C[N2][*]", 0},
      {"CX", "C[N2][*]", 0},
      {"XC12", "C[N2][*]", 0},
      // X[N*][*]: X at 0 is enough
      {"CXYZ", "C[N*][*]", 1},
      {"XC", "C[N*][*]", 0},
      // [Nd]X[*]: exactly d digits ahead of X
      {"12_NET", "[N2]_NET[*]", 1},
      {"12_NET_A", "[N2]_NET[*]", 1},
      {"1_NET", "[N2]_NET[*]", 0},
      {"A2_NET", "[N2]_NET[*]", 0},
      {"12_NE", "[N2]_NET[*]", 0},
      // [N*]X[*]: only digits ahead of X
      {"_NET", "[N*]_NET[*]", 1},
      {"123_NETX", "[N*]_NET[*]", 1},
      {"1a_NET", "[N*]_NET[*]", 0},
      // [Nd][*] and [N*][*] alone: the first character is a digit
      {"1ABC", "[N2][*]", 1},
      {"A1", "[N2][*]", 0},
      {"9", "[N*][*]", 1},
      {"", "[N2][*]", kThrows},
      {"", "[N*][*]", kThrows},
  };
  for (const Row& row : rows) Check(row);
}

TEST(NameFilter, DigitRunsInContainsMode) {
  const Row rows[] = {
      // [*]X[Nd][*]: exactly d digits right after X
      {"A_U12_B", "[*]U[N2][*]", 1},
      {"U12", "[*]U[N2][*]", 1},
      {"U1", "[*]U[N2][*]", 0},
      {"XUA12", "[*]U[N2][*]", 0},  // first occurrence decides
      {"XY", "[*]U[N2][*]", 0},
      // [*]X[N*][*]: the first character after X is a digit
      {"A_U1", "[*]U[N*][*]", 1},
      {"A_UX", "[*]U[N*][*]", 0},
      {"A_U", "[*]U[N*][*]", kThrows},
      // [*][Nd]X[*]: the body's own last d characters
      {"xxA12yy", "[*][N2]A12[*]", 1},
      {"xxA1yy", "[*][N2]A12[*]", 0},
      {"xxAByy", "[*][N2]AB[*]", 0},
      // [*][N*]X[*]: the second-to-last character before X
      {"1x_GND_A", "[*][N*]_GND[*]", 1},
      {"xx_GND", "[*][N*]_GND[*]", 0},
      {"1_GND", "[*][N*]_GND[*]", kThrows},
      // [*][Nd][*] alone: at least one digit anywhere
      {"ABC1DEF", "[*][N3][*]", 1},
      {"ABC", "[*][N*][*]", 0},
      {"", "[*][N2][*]", 0},
  };
  for (const Row& row : rows) Check(row);
}

TEST(NameFilter, SubFilterTakesAnExplicitMode) {
  CString target("NET12");
  CString body("NET[N2]");
  EXPECT_EQ(CLString::IsSuitedForFilter_Sub_Filter(target, body, 0), 1);
  EXPECT_EQ(CLString::IsSuitedForFilter_Sub_Filter(target, body, 1), 1);
  EXPECT_EQ(CLString::IsSuitedForFilter_Sub_Filter(target, body, -1), 1);
  EXPECT_EQ(CLString::IsSuitedForFilter_Sub_Filter(target, body, 2), 1);
  EXPECT_EQ(CLString::IsSuitedForFilter_Sub_Filter(target, body, 7), 0);
  CString filter("[*]ET[N2]");
  EXPECT_EQ(CLString::IsSuitedForFilter_Sub(target, filter), 0);  // ends-with needs ET at 0
}

}  // namespace
