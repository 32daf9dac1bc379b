// The pattern filters of CStringEx, one row per target and filter: the simple terms with
// their sweep and restart rules, the rich terms (case, the "'" escape, the range term and
// its settled consumption and "*" interplay), and the combination rule for both.
#include <corlith/text/StringEx.h>

#include <gtest/gtest.h>

#include <string>

namespace {

struct Row {
  const char* target;
  const char* filter;
  int expected;
};

using Matcher = int (*)(const CString&, const CString&);

void CheckRows(Matcher match, std::initializer_list<Row> rows) {
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << "target \"" << row.target << "\" filter \"" << row.filter << "\"");
    EXPECT_EQ(match(row.target, row.filter), row.expected);
  }
}

TEST(SimpleFilterTerm, TokensLengthsAndEmptyTargets) {
  CheckRows(CStringEx::DoesTargetStrMatchFilterStr,
            {
                {"R1", "R#", 1},
                {"R12", "R#", 0},  // without "*" the lengths must agree
                {"RA", "R#", 0},
                {"RA", "R?", 1},
                {"R1", "R?", 0},    // "?" is one non-digit
                {"abc", "ABC", 0},  // case-sensitive
                {"", "A*", 1},      // deliberate: "" matches any filter with "*"
                {"", "", 1},
                {"", "A", 0},
                {"A", "", 0},
                {"", "?", 0},
                {"ABC", "*", 1},
                {"ABC", "A*", 1},
                {"XABC", "A*", 0},
                {"ABC", "*C", 1},
                {"ABC", "*B", 0},
                {"BA", "**A", 1},     // "*" then "*" changes nothing
                {"A[1]", "A[#]", 1},  // no escape needed, none exists
            });
}

TEST(SimpleFilterTerm, StarLooksAtTheNextToken) {
  CheckRows(CStringEx::DoesTargetStrMatchFilterStr,
            {
                {"R1X", "*?", 1},
                {"RX1", "*?", 0},  // "?" last: the last character
                {"RX1", "*#", 1},
                {"R1X", "*#", 0},     // "#" last: the last character
                {"123A1", "*?1", 1},  // "?" elsewhere: digits dropped
                {"AB3X", "*#X", 1},   // "#" elsewhere: up to a digit
                {"A_B_1", "*_#", 1},  // occurrence moved to one before a digit
                {"A_B_C", "*_#", 0},  // none: "#" fails, restart, nothing left
                {"ABXAB1", "*AB#", 1},
                {"XA1", "*A?", 0},  // "?" on a digit: 0, no restart
                {"XA1", "*A#", 1},
            });
}

TEST(SimpleFilterTerm, RepeatedSweepsAndRestarts) {
  CheckRows(CStringEx::DoesTargetStrMatchFilterStr,
            {
                {"NET_1", "*_#", 1},
                {"NET_12", "*_#", 0},  // the second sweep finds no "_" in "2"
                {"NET_12", "*_#*", 1},
                {"A1A1", "*A#", 1},  // covered by two sweeps
                {"A1X", "*A#", 0},
                {"AXB", "*A?B", 1},
                {"AXAYB", "*A?B", 0},  // a failed "B" drops one character; "A" is gone
                {"R1", "R#*", 1},
                {"XR1", "R#*", 0},  // no restart without a leading "*"
            });
}

TEST(RichFilterTerm, CaseQuoteAndLiteralFallbacks) {
  CheckRows(CStringEx::DoesTargetStrMatchWithFilterStr,
            {
                {"r1", "R#", 1},
                {"R1", "r#", 1},
                {"r12", "R#", 0},
                {"A*B", "A'*B", 1},
                {"AXB", "A'*B", 0},
                {"A#", "A'#", 1},
                {"A'", "A'", 1},
                {"R<A..5>", "r<a..5>", 1},  // m not digits: literal text
                {"R<1..5", "R<1..5", 1},    // no ">": literal text
                {"R<..5>", "R<..5>", 0},    // an empty m is a range from 0 ...
                {"R3", "R<..5>", 1},        // ... so R3 is in it
                {"R0", "R<1..>", 1},        // an empty n reads as 0: the range 0..1
                {"R<1..>", "R<1..>", 0},
            });
}

TEST(RichFilterTerm, RangeTerm) {
  CheckRows(CStringEx::DoesTargetStrMatchWithFilterStr,
            {
                {"R3", "R<1..5>", 1},
                {"R1", "R<1..5>", 1},
                {"R5", "R<1..5>", 1},
                {"R0", "R<1..5>", 0},
                {"R6", "R<1..5>", 0},
                {"R5", "R<5..1>", 1},   // swapped
                {"R10", "R<1..5>", 0},  // the whole number, never a shorter one
                {"R2.5", "R<1..2.5>", 1},
                {"R2.6", "R<1..2.5>", 0},
                {"R3.", "R<1..5>", 0},  // the dot is not part of the number: left over
                {"R3.", "R<1..5>.", 1},
                {"R3X", "R<1..5>", 0},
                {"R3R4", "R<1..5>", 0},  // one sweep
                {"R", "R<1..5>", 0},
                {"", "<1..5>", 0},
                {"RX", "R<1..5>", 0},
                {"R3<1..5>", "R<1..5>'<1..5>", 1},  // only the first "<" can be a range
                {"R99999999999999999999999999", "R<1..5>", 0},
                {"R5", "R<99999999999999999999999999..1>", 1},
                {"NET_10_3", "*<1..5>", 1},  // a failed number is dropped whole, then search on
                {"NET_3_10", "*<1..5>", 0},  // the target must end in a number in range
                {"R10", "*<0..0>", 0},       // no number is read from the middle of another
                {"C1_C3", "*C<3..3>", 1},    // a literal before a range wants a digit after it
                {"v12.5mm", "V<12..13>MM", 1},
            });
}

TEST(FilterCombination, SimpleTerms) {
  CheckRows(CStringEx::DoesTargetStrMatchFilterStrCheckingCombination,
            {
                {"A", "", 0},
                {"X", "[*]", 1},
                {"", "[*]", 1},
                {"R1", "[R#]", 1},
                {"R1", "[R#],[C#]", 1},
                {"C1", "[R#],[C#]", 1},
                {"U1", "[R#],[C#]", 0},
                {"R1", "[R*]&[*1]", 1},
                {"R2", "[R*]&[*1]", 0},
                {"R1", "[R*]~[R1]", 0},
                {"R2", "[R*]~[R1]", 1},
                {"R1", "[R*],[C*]&[*2]", 0},  // strictly left to right: (R or C) and *2
                {"R2", "[C*]&[*2],[R*]", 1},  // (C and *2) or R
                {"R1", "[R*]&[[*1],[*2]]", 1},
                {"R3", "[R*]&[[*1],[*2]]", 0},
                {"R3", "[R*]~[[*1],[*2]]", 1},
                {"R1", "[x&[R1]]", 1},
                {"R1", "[R*][R1]", 0},         // a term without an operator: 0
                {"R1", "[[R*][R1]],[R1]", 1},  // ... of its own (sub)filter only
                {"R1", "abc", 1},              // no complete term: the starting result
                {"R1", "x[R1]", 1},
                {"R2", "[R1", 1},
                {"R2", "]&[R1]", 0},
                {"A,B", "[A,B]", 1},   // operators inside a term are literal
                {"r1", "[R#]", 0},     // case-sensitive terms
                {"R]1", "[R']#]", 0},  // no escape in the simple family
            });
}

TEST(FilterCombination, RichTerms) {
  CheckRows(CStringEx::DoesTargetStrMatchWithFilterStrCheckingCombination,
            {
                {"r1", "[R#],[C#]", 1},
                {"c7", "[R#],[C<5..9>]", 1},
                {"c4", "[R#],[C<5..9>]", 0},
                {"R]1", "[R']#]", 1},  // "'" hides a bracket from the scan
                {"R1", "[R*]~[*'1]", 0},
                {"net_gnd", "[NET_*]~[*VCC*]", 1},
            });
}

TEST(FilterCombination, DeepNestingAndArrays) {
  std::string filter;
  for (int i = 0; i < 20000; ++i) filter += '[';
  filter += "R#";
  for (int i = 0; i < 20000; ++i) filter += ']';
  EXPECT_EQ(CStringEx::DoesTargetStrMatchFilterStrCheckingCombination("R1", filter.c_str()), 1);
  EXPECT_EQ(CStringEx::DoesTargetStrMatchFilterStrCheckingCombination("C1", filter.c_str()), 0);

  CStringArray filters;
  EXPECT_EQ(CStringEx::DoesTargetStrMatchFilterStrs("R1", filters), 0);
  EXPECT_EQ(CStringEx::DoesTargetStrMatchWithFilterStrs("R1", filters), 0);
  filters.Add("[C*]");
  filters.Add("[r*]");
  EXPECT_EQ(CStringEx::DoesTargetStrMatchFilterStrs("R1", filters), 0);
  EXPECT_EQ(CStringEx::DoesTargetStrMatchWithFilterStrs("R1", filters), 1);
  filters.Add("[R#]");
  EXPECT_EQ(CStringEx::DoesTargetStrMatchFilterStrs("R1", filters), 1);
}

}  // namespace
