// The three splitters: delimiter sets (runs collapse, no empty tokens, the rewind
// difference of the twins), whole-string delimiters with their marker choice, quoted
// phrases, and XTokenString's five switches.
#include <corlith/text/Tokenizer.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

std::vector<std::string> Elements(const CStringArray& a) {
  std::vector<std::string> out;
  for (INT_PTR i = 0; i < a.GetSize(); ++i) out.push_back(a[i].str());
  return out;
}

using Strings = std::vector<std::string>;

TEST(Tokenizer, DelimiterRunsNeverGiveEmptyTokens) {
  struct Row {
    const char* source;
    const char* delimiters;
    Strings expected;
  };
  const Row rows[] = {
      {",,a,,b,", ",", {"a", "b"}},
      {"a b\tc", " \t", {"a", "b", "c"}},
      {"", ",", {}},
      {",,,", ",", {}},
      {"abc", "", {"abc"}},
      {"1.2.3", ".", {"1", "2", "3"}},
      {"a&b&&c", "&", {"a", "b", "c"}},
      // high bytes are delimiters by their unsigned value
      {"a\xFF"
       "b\x80"
       "c",
       "\xFF\x80",
       {"a", "b", "c"}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.source);
    CStringArray out;
    CTokenizer(row.source, row.delimiters).GetTokenArray(out);
    EXPECT_EQ(Elements(out), row.expected);
  }
}

TEST(Tokenizer, NextLeavesThePositionOnTheEndingDelimiterAndTailDoesNotMove) {
  CTokenizer t("  alpha  beta gamma  ", " ");
  CString token("stale");
  EXPECT_EQ(t.Tail(), CString("alpha  beta gamma  "));
  ASSERT_TRUE(t.Next(token));
  EXPECT_EQ(token, CString("alpha"));
  EXPECT_EQ(t.Tail(), CString("beta gamma  "));
  EXPECT_EQ(t.Tail(), CString("beta gamma  "));
  ASSERT_TRUE(t.Next(token));
  ASSERT_TRUE(t.Next(token));
  EXPECT_EQ(token, CString("gamma"));
  EXPECT_EQ(t.Tail(), CString());
  EXPECT_FALSE(t.Next(token));
  EXPECT_TRUE(token.IsEmpty());

  CTokenizer empty;
  EXPECT_FALSE(empty.Next(token));
  EXPECT_EQ(empty.Tail(), CString());
}

TEST(Tokenizer, SetDelimitersAddsToTheSet) {
  CTokenizer t("a,b;c", ",");
  t.SetDelimiters(";");
  CStringArray out;
  t.GetTokenArray(out);
  EXPECT_EQ(Elements(out), (Strings{"a", "b", "c"}));
  // The three-argument form starts from a cleared set.
  out.RemoveAll();
  t.GetTokenArray(out, "a,b;c", ";");
  EXPECT_EQ(Elements(out), (Strings{"a,b", "c"}));
}

TEST(Tokenizer, TheTwinsDifferOnlyInRewinding) {
  CStringArray out;  // existing elements stay
  out.Add("keep");
  CTokenizer rewinding("a b", " ");
  rewinding.GetTokenArray(out);
  rewinding.GetTokenArray(out);
  EXPECT_EQ(Elements(out), (Strings{"keep", "a", "b", "a", "b"}));

  CStringArray once;
  CLTokenizer staying("a b", " ");
  staying.GetTokenArray(once);
  staying.GetTokenArray(once);
  EXPECT_EQ(Elements(once), (Strings{"a", "b"}));
  CString token;
  EXPECT_FALSE(staying.Next(token));

  CStringArray reset;
  staying.GetTokenArray(reset, "x|y", "|");
  EXPECT_EQ(Elements(reset), (Strings{"x", "y"}));
}

TEST(Tokenizer, FullStringDelimiterPicksTheFirstAbsentMarker) {
  struct Row {
    const char* source;
    const char* delimiter;
    Strings expected;
  };
  const Row rows[] = {
      {"a - b - c", " - ", {"a", "b", "c"}},
      {"std::vector::size", "::", {"std", "vector", "size"}},
      {"a!b::c", "::", {"a!b", "c"}},        // "!" present: "@" is the marker
      {"!@#$%a::b", "::", {"!@#$%a", "b"}},  // "^" is the marker
      {"::a::::b::", "::", {"a", "b"}},      // runs collapse like any delimiter
      {"a-b", "::", {"a-b"}},
      // deliberate: all six markers present, the delimiter is deleted and one token remains
      {"!@#$%^x::y", "::", {"!@#$%^xy"}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.source);
    CStringArray out;
    CTokenizer t;
    t.GetTokenArrayByFullString(out, row.source, row.delimiter);
    EXPECT_EQ(Elements(out), row.expected);
  }
}

TEST(Tokenizer, QuotedPhrasesStayOnePiece) {
  struct Row {
    const char* source;
    Strings expected;
  };
  const Row rows[] = {
      {"one \"two three\"", {"one", "two three"}},
      {"\"a   b\"  c", {"a b", "c"}},  // blank runs inside quotes collapse to one
      {"  x  y  ", {"x", "y"}},
      {"\"solo\" z", {"solo", "z"}},
      {"ab\" c", {"ab", "c"}},  // a lone closing quote is dropped
      {"a\"b\"c", {"abc"}},
      {"x \"never closed", {"x"}},  // an unfinished phrase is dropped
      {"\" a \"", {" a "}},
      {"", {}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.source);
    CString source(row.source);
    CStringArray out;
    CTokenizer::GetStringArrayFromStringToken(source, out);
    EXPECT_EQ(Elements(out), row.expected);
    EXPECT_EQ(source, CString(row.source));
  }
}

struct XRow {
  const char* source;
  const char* delimiters;
  int maxTokens, trim, escape, quote, keepEmpty;
  Strings expected;
};

TEST(XTokenString, SwitchesTable) {
  const XRow rows[] = {
      // keepEmpty
      {"a,,b", ",", 0, 0, 0, 0, 0, {"a", "b"}},
      {"a,,b", ",", 0, 0, 0, 0, 1, {"a", "", "b"}},
      {",a", ",", 0, 0, 0, 0, 1, {"", "a"}},
      {",,,", ",", 0, 0, 0, 0, 0, {}},
      {",,", ",", 0, 0, 0, 0, 1, {"", "", ""}},
      // a trailing delimiter announces an empty last field only with keepEmpty
      {"a,", ",", 0, 0, 0, 0, 1, {"a", ""}},
      {"a,", ",", 0, 0, 0, 0, 0, {"a"}},
      // blanks ahead of a token belong to it unless trimmed
      {"a, b ,c", ",", 0, 0, 0, 0, 0, {"a", " b ", "c"}},
      {"a, b ,c", ",", 0, 1, 0, 0, 0, {"a", "b", "c"}},
      {"a,  ,c", ",", 0, 1, 0, 0, 0, {"a", "c"}},
      {"a,  ,c", ",", 0, 1, 0, 0, 1, {"a", "", "c"}},
      // quotes
      {"\"a,b\",c", ",", 0, 0, 0, 1, 0, {"a,b", "c"}},
      {"\"a,b\",c", ",", 0, 0, 0, 0, 0, {"\"a", "b\"", "c"}},
      {"x,\"open,end", ",", 0, 0, 0, 1, 0, {"x", "open,end"}},
      {"\"a\"b,c", ",", 0, 0, 0, 1, 0, {"a", "b", "c"}},
      {"\"a\",", ",", 0, 0, 0, 1, 1, {"a"}},  // deliberate: a closing quote is not a delimiter stop
      {"\"\",x", ",", 0, 0, 0, 1, 1, {"", "x"}},
      // escapes
      {"a\\,b,c", ",", 0, 0, 1, 0, 0, {"a,b", "c"}},
      {"a\\,b,c", ",", 0, 0, 0, 0, 0, {"a\\", "b", "c"}},
      {"\"say \\\"hi\\\"\",x", ",", 0, 0, 1, 1, 0, {"say \"hi\"", "x"}},
      {"ab\\", ",", 0, 0, 1, 0, 0, {"ab"}},  // a backslash at the very end ends the token
      {"\\\\", ",", 0, 0, 1, 0, 0, {"\\"}},
      // maxTokens
      {"a,b,c,d", ",", 2, 0, 0, 0, 0, {"a", "b"}},
      {"a,b", ",", 2, 0, 0, 0, 0, {"a", "b"}},
      {"a,b,", ",", 2, 0, 0, 0, 1, {"a", "b"}},  // the trailing empty field respects the limit
      {"a,,b", ",", 2, 0, 0, 0, 0, {"a", "b"}},
      {"a,b", ",", -3, 0, 0, 0, 0, {"a", "b"}},
      // several delimiters
      {"a;b,c d", ",; ", 0, 0, 0, 0, 0, {"a", "b", "c", "d"}},
  };
  for (const XRow& row : rows) {
    SCOPED_TRACE(testing::Message() << row.source << " max " << row.maxTokens << " trim " << row.trim
                                    << " escape " << row.escape << " quote " << row.quote << " keepEmpty "
                                    << row.keepEmpty);
    CStringArray out;
    const ULONGLONG n = XTokenString(row.source, row.delimiters, out, row.maxTokens, row.trim, row.escape,
                                     row.quote, row.keepEmpty);
    EXPECT_EQ(Elements(out), row.expected);
    EXPECT_EQ(n, static_cast<ULONGLONG>(out.GetSize()));
  }
}

TEST(XTokenString, AppendsAndCountsExistingElements) {
  CStringArray out;
  out.Add("old");
  EXPECT_EQ(XTokenString("a,b", ",", out, 0, 0, 0, 0, 0), 3u);
  // maxTokens counts the elements already present
  EXPECT_EQ(XTokenString("c,d", ",", out, 4, 0, 0, 0, 0), 4u);
  EXPECT_EQ(Elements(out), (Strings{"old", "a", "b", "c"}));
  // only delimiters: the existing count, nothing added
  EXPECT_EQ(XTokenString(",,", ",", out, 0, 0, 0, 0, 0), 4u);
}

TEST(XTokenString, NullOrEmptyInputReturnsZeroWithoutTouchingTheResult) {
  CStringArray out;
  out.Add("kept");
  EXPECT_EQ(XTokenString(nullptr, ",", out, 0, 0, 0, 0, 1), 0u);
  EXPECT_EQ(XTokenString("a", nullptr, out, 0, 0, 0, 0, 1), 0u);
  EXPECT_EQ(XTokenString("", ",", out, 0, 0, 0, 0, 1), 0u);
  EXPECT_EQ(XTokenString("a", "", out, 0, 0, 0, 0, 1), 0u);
  EXPECT_EQ(Elements(out), (Strings{"kept"}));
}

}  // namespace
