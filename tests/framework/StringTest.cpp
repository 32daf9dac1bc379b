// CString at its boundaries: the clamping and -1 rules of the original's search and
// extraction members, the C locale's white space, and UTF-8 text kept whole by the
// character-set members and by MakeReverse.
#include <corlith/framework/Exceptions.h>
#include <corlith/framework/String.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

namespace {

// UTF-8 spellings used throughout.
constexpr const char* kEAcute = "\xC3\xA9";  // U+00E9
constexpr const char* kEGrave = "\xC3\xA8";  // U+00E8
constexpr const char* kMiddleDot = "\xC2\xB7";
constexpr const char* kMicro = "\xC2\xB5";
constexpr const char* kGrinning = "\xF0\x9F\x98\x80";  // U+1F600

std::string U(std::initializer_list<std::string> parts) {
  std::string out;
  for (const auto& p : parts) out += p;
  return out;
}

int Sign(int v) { return (v > 0) - (v < 0); }

TEST(StringFind, CharacterSearchRejectsStartOutsideTheText) {
  const CString s("abcabc");
  struct Row {
    char ch;
    int start;
    int expected;
  };
  const Row rows[] = {
      {'c', 0, 2},   {'c', 3, 5},        {'c', 5, 5},  {'a', 6, -1}, {'a', 7, -1},
      {'a', -1, -1}, {'a', INT_MIN, -1}, {'z', 0, -1}, {'a', 1, 3},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << row.ch << " from " << row.start);
    EXPECT_EQ(s.Find(row.ch, row.start), row.expected);
  }
  EXPECT_EQ(CString().Find('a', 0), -1);
  EXPECT_EQ(CString(std::string("a\0b", 3)).Find('b'), 2);
}

TEST(StringFind, TextSearchAllowsStartAtTheEnd) {
  const CString s("abcabc");
  struct Row {
    const char* text;
    int start;
    int expected;
  };
  const Row rows[] = {
      {"bc", 0, 1}, {"bc", 2, 4},  {"bc", 5, -1}, {"", 6, 6},    {"", 7, -1},
      {"c", 6, -1}, {"a", -1, -1}, {"", 0, 0},    {"cab", 0, 2}, {"abcabcd", 0, -1},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << '"' << row.text << "\" from " << row.start);
    EXPECT_EQ(s.Find(row.text, row.start), row.expected);
  }
}

TEST(StringExtract, MidLeftRightClampSilently) {
  const CString s("abcdef");
  struct Row {
    const char* call;
    CString got;
    const char* expected;
  };
  const Row rows[] = {
      {"Mid(-2)", s.Mid(-2), "abcdef"},   {"Mid(2)", s.Mid(2), "cdef"},
      {"Mid(6)", s.Mid(6), ""},           {"Mid(10)", s.Mid(10), ""},
      {"Mid(1,2)", s.Mid(1, 2), "bc"},    {"Mid(1,-3)", s.Mid(1, -3), ""},
      {"Mid(4,10)", s.Mid(4, 10), "ef"},  {"Mid(-1,2)", s.Mid(-1, 2), "ab"},
      {"Mid(7,1)", s.Mid(7, 1), ""},      {"Mid(0,INT_MAX)", s.Mid(0, INT_MAX), "abcdef"},
      {"Left(-1)", s.Left(-1), ""},       {"Left(3)", s.Left(3), "abc"},
      {"Left(10)", s.Left(10), "abcdef"}, {"Right(-1)", s.Right(-1), ""},
      {"Right(2)", s.Right(2), "ef"},     {"Right(10)", s.Right(10), "abcdef"},
      {"Right(0)", s.Right(0), ""},       {"Mid(INT_MAX,INT_MAX)", s.Mid(INT_MAX, INT_MAX), ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.call);
    EXPECT_EQ(row.got, row.expected);
  }
}

// Exactly the C locale's isspace set: 0x0B and 0x0C go, 0xA0 (no-break space in
// Latin-1) and 0x85 (next line) stay, whatever the process locale says.
TEST(StringTrim, WhiteSpaceIsExactlyTheCLocaleSet) {
  for (int b = 1; b < 256; ++b) {
    SCOPED_TRACE(b);
    const char c = static_cast<char>(b);
    const bool space = (b >= 0x09 && b <= 0x0D) || b == 0x20;
    const std::string padded = std::string(2, c) + "x" + std::string(2, c);
    EXPECT_EQ(CString(padded).Trim().str(), space ? "x" : padded);
    EXPECT_EQ(CString(padded).TrimLeft().str(), space ? "x" + std::string(2, c) : padded);
    EXPECT_EQ(CString(padded).TrimRight().str(), space ? std::string(2, c) + "x" : padded);
  }
  EXPECT_EQ(CString(" \t\r\n\v\f ").Trim(), "");
  EXPECT_EQ(CString(" a b ").Trim(), "a b");
}

TEST(StringTrim, TargetCharacterAndSet) {
  struct Row {
    const char* call;
    CString got;
    std::string expected;
  };
  const std::string eae = U({kEAcute, "a", kEAcute});
  const std::string ea = U({"x", kEAcute});
  const Row rows[] = {
      {"Trim('x')", CString("xxaxbxx").Trim('x'), "axb"},
      {"TrimLeft('x')", CString("xxaxbxx").TrimLeft('x'), "axbxx"},
      {"TrimRight('x')", CString("xxaxbxx").TrimRight('x'), "xxaxb"},
      {"Trim('x') all", CString("xxx").Trim('x'), ""},
      {"Trim(set)", CString("-+a+-b-+").Trim("+-"), "a+-b"},
      {"TrimLeft(set)", CString("-+a-").TrimLeft("+-"), "a-"},
      {"TrimRight(set)", CString("-a+-").TrimRight("+-"), "-a"},
      {"Trim(empty set)", CString(" a ").Trim(""), " a "},
      {"Trim(multi-byte set)", CString(eae).Trim(kEAcute), "a"},
      {"TrimLeft(multi-byte set)", CString(eae).TrimLeft(kEAcute), U({"a", kEAcute})},
      {"TrimRight(multi-byte set)", CString(eae).TrimRight(kEAcute), U({kEAcute, "a"})},
      // A byte-wise trim would take the shared lead byte 0xC3 off the è.
      {"other character sharing the lead byte", CString(U({kEGrave, "a", kEGrave})).Trim(kEAcute),
       U({kEGrave, "a", kEGrave})},
      // The set's lone continuation byte is not a character of the text.
      {"continuation byte in the set", CString(ea).TrimRight("\xA9"), ea},
      {"mixed set", CString(U({kEAcute, " a ", kGrinning, " "})).Trim(U({" ", kGrinning, kEAcute}).c_str()),
       "a"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.call);
    EXPECT_EQ(row.got.str(), row.expected);
  }
}

TEST(StringEdit, ReplaceAndRemoveReturnTheirCount) {
  struct Row {
    const char* text;
    const char* from;
    const char* to;
    int count;
    const char* expected;
  };
  const Row rows[] = {
      {"abcabc", "bc", "X", 2, "aXaX"}, {"aaa", "aa", "b", 1, "ba"},  // left to right, no overlap
      {"aa", "a", "aa", 2, "aaaa"},                                   // the replacement is not searched again
      {"abc", "", "X", 0, "abc"},       {"abc", nullptr, "X", 0, "abc"}, {"abc", "abc", "", 1, ""},
      {"abc", "z", "y", 0, "abc"},      {"abc", "b", nullptr, 1, "ac"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << row.text << " / " << (row.from ? row.from : "(null)"));
    CString s(row.text);
    EXPECT_EQ(s.Replace(row.from, row.to), row.count);
    EXPECT_EQ(s, row.expected);
  }

  CString path("a.b.c");
  EXPECT_EQ(path.Replace('.', '/'), 2);
  EXPECT_EQ(path, "a/b/c");
  CString dashes("a-b--c-");
  EXPECT_EQ(dashes.Remove('-'), 4);
  EXPECT_EQ(dashes, "abc");
  EXPECT_EQ(dashes.Remove('-'), 0);
}

TEST(StringEdit, DeleteAndInsertClampAndReturnNewLength) {
  struct Row {
    const char* call;
    int length;
    CString after;
    const char* expected;
  };
  std::vector<Row> rows;
  const auto del = [&](const char* call, int index, int count, const char* expected) {
    CString s("abcdef");
    const int n = s.Delete(index, count);
    rows.push_back({call, n, s, expected});
  };
  const auto ins = [&](const char* call, int index, const char* text, const char* expected) {
    CString s("abcdef");
    const int n = s.Insert(index, text);
    rows.push_back({call, n, s, expected});
  };
  del("Delete(1,2)", 1, 2, "adef");
  del("Delete(-3,2)", -3, 2, "cdef");
  del("Delete(4,100)", 4, 100, "abcd");
  del("Delete(6,1)", 6, 1, "abcdef");
  del("Delete(10,1)", 10, 1, "abcdef");
  del("Delete(2,0)", 2, 0, "abcdef");
  del("Delete(2,-1)", 2, -1, "abcdef");
  del("Delete(0,INT_MAX)", 0, INT_MAX, "");
  ins("Insert(2,XY)", 2, "XY", "abXYcdef");
  ins("Insert(-5,XY)", -5, "XY", "XYabcdef");
  ins("Insert(6,XY)", 6, "XY", "abcdefXY");
  ins("Insert(100,XY)", 100, "XY", "abcdefXY");
  ins("Insert(3,empty)", 3, "", "abcdef");
  for (const Row& row : rows) {
    SCOPED_TRACE(row.call);
    EXPECT_EQ(row.after, row.expected);
    EXPECT_EQ(row.length, row.after.GetLength());
  }

  CString s("abc");
  EXPECT_EQ(s.Insert(-1, 'X'), 4);
  EXPECT_EQ(s.Insert(99, 'Y'), 5);
  EXPECT_EQ(s, "XabcY");
}

TEST(StringAccess, GetAtAllowsTheTerminatorAndThrowsOutsideIt) {
  const CString s("abc");
  EXPECT_EQ(s.GetAt(0), 'a');
  EXPECT_EQ(s.GetAt(3), '\0');
  EXPECT_EQ(s[3], '\0');
  EXPECT_EQ(s[std::size_t{2}], 'c');
  EXPECT_EQ(CString().GetAt(0), '\0');
  for (long long i : {-1LL, 4LL, static_cast<long long>(INT_MAX), static_cast<long long>(INT_MIN)}) {
    SCOPED_TRACE(i);
    EXPECT_THROW(s.GetAt(static_cast<int>(i)), CInvalidArgException);
    EXPECT_THROW(s[i], CInvalidArgException);
  }
  // An index that only looks small once cut to int must not reach the text.
  EXPECT_THROW(s[(1LL << 32) + 1], CInvalidArgException);
  EXPECT_THROW(s[std::size_t{0} - 1], CInvalidArgException);
}

TEST(StringAccess, SetAtRejectsTheTerminatorPosition) {
  CString s("abc");
  EXPECT_THROW(s.SetAt(3, 'x'), CInvalidArgException);
  EXPECT_THROW(s.SetAt(-1, 'x'), CInvalidArgException);
  EXPECT_EQ(s, "abc");
  s.SetAt(2, 'z');
  EXPECT_EQ(s, "abz");
}

TEST(StringSearch, CharacterSetMembersMatchWholeCharacters) {
  const std::string text = U({"ab", kMicro, "c", kMiddleDot, "d"});
  const CString s(text);
  EXPECT_EQ(s.FindOneOf(kMiddleDot), 5);
  EXPECT_EQ(s.FindOneOf("\xC2"), -1);
  EXPECT_EQ(s.FindOneOf(""), -1);
  EXPECT_EQ(s.SpanIncluding(U({"ba", kMicro}).c_str()).str(), U({"ab", kMicro}));
  EXPECT_EQ(s.SpanIncluding(U({"ab", kMiddleDot}).c_str()).str(), "ab");
  EXPECT_EQ(s.SpanExcluding(kMiddleDot).str(), U({"ab", kMicro, "c"}));
  EXPECT_EQ(s.SpanExcluding("\xC2").str(), text);
  EXPECT_EQ(s.ReverseFind('c'), 4);
  EXPECT_EQ(s.ReverseFind('z'), -1);
}

TEST(StringBuffer, ReleaseBufferAndTruncateSetTheLength) {
  CString s("abc");
  char* p = s.GetBuffer(10);
  std::strcpy(p, "hello");
  s.ReleaseBuffer();
  EXPECT_EQ(s, "hello");
  p = s.GetBuffer(0);
  p[1] = 'a';
  s.ReleaseBuffer(3);
  EXPECT_EQ(s, "hal");
  std::memcpy(s.GetBufferSetLength(5), "x\0y\0z", 5);
  EXPECT_EQ(s.GetLength(), 5);
  s.Truncate(3);
  EXPECT_EQ(s.str(), std::string("x\0y", 3));
  EXPECT_THROW(s.Truncate(4), CInvalidArgException);
  EXPECT_THROW(s.Truncate(-1), CInvalidArgException);
}

// Arguments that point into the string itself must be read before it changes.
TEST(StringEdit, OwnTextAsArgument) {
  CString s("abc");
  s += s;
  EXPECT_EQ(s, "abcabc");
  s.Insert(1, s.GetString());
  EXPECT_EQ(s, "aabcabcbcabc");
  CString t("xyx");
  EXPECT_EQ(t.Replace("x", t.GetString()), 2);
  EXPECT_EQ(t, "xyxyxyx");
  CString u(std::string(40, 'q'));
  u.Append(u.GetString(), 10);
  EXPECT_EQ(u.str(), std::string(50, 'q'));
}

TEST(StringCase, CaseChangesTouchAsciiOnly) {
  const std::string mixed = U({"aZ", kEAcute, "\xC3\x89", "1_", kGrinning});
  EXPECT_EQ(CString(mixed).MakeUpper().str(), U({"AZ", kEAcute, "\xC3\x89", "1_", kGrinning}));
  EXPECT_EQ(CString(mixed).MakeLower().str(), U({"az", kEAcute, "\xC3\x89", "1_", kGrinning}));
  // Bytes that are letters in Latin-1 stay as they are.
  EXPECT_EQ(CString("\xE9\xC9").MakeUpper().str(), "\xE9\xC9");
}

TEST(StringCompare, ByteOrderCaseFoldingAndCollation) {
  struct Row {
    const char* a;
    const char* b;
    int compare;
    int noCase;
  };
  const Row rows[] = {
      {"abc", "abc", 0, 0},
      {"abc", "ABC", 1, 0},
      {"abc", "ABD", 1, -1},
      {"B", "a", -1, 1},
      // Folding is to lower case: 'a' (0x61) sorts after '_' (0x5F), 'A' would not.
      {"A", "_", -1, 1},
      {"[", "a", -1, -1},
      {"ab", "abc", -1, -1},
      {"", "", 0, 0},
      // Bytes compare unsigned: UTF-8 sorts after ASCII.
      {"\xC3\xA9", "z", 1, 1},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << row.a << " vs " << row.b);
    EXPECT_EQ(CString(row.a).Compare(row.b), row.compare);
    EXPECT_EQ(Sign(CString(row.a).CompareNoCase(row.b)), row.noCase);
    // The default global locale is "C", whose collation is byte order.
    EXPECT_EQ(Sign(CString(row.a).Collate(row.b)), row.compare);
    EXPECT_EQ(Sign(CString(row.a).CollateNoCase(row.b)), row.noCase);
  }
}

TEST(StringTokenize, SkipsDelimiterRunsAndEndsWithMinusOne) {
  struct Row {
    const char* what;
    std::string text;
    std::string delimiters;
    std::vector<std::string> tokens;
  };
  const Row rows[] = {
      {"plain", "  a, b;;c ", " ,;", {"a", "b", "c"}},
      {"only delimiters", " ,; ", " ,;", {}},
      {"empty", "", ",", {}},
      {"no delimiter in text", "abc", ",", {"abc"}},
      {"multi-byte delimiter", U({"a", kMiddleDot, kMiddleDot, "b"}), kMiddleDot, {"a", "b"}},
      // A byte-wise tokenizer would cut µ at the lead byte it shares with the dot.
      {"character sharing the delimiter's lead byte",
       U({"a", kMicro, "b"}),
       kMiddleDot,
       {U({"a", kMicro, "b"})}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    const CString s(row.text);
    std::vector<std::string> tokens;
    int pos = 0;
    for (int guard = 0; guard < 20; ++guard) {
      const CString token = s.Tokenize(row.delimiters.c_str(), pos);
      if (pos == -1) {
        EXPECT_TRUE(token.IsEmpty());
        break;
      }
      tokens.push_back(token.str());
    }
    EXPECT_EQ(pos, -1);
    EXPECT_EQ(tokens, row.tokens);
  }

  // The position steps past the delimiter that ended the token.
  int pos = 0;
  EXPECT_EQ(CString("ab,cd").Tokenize(",", pos), "ab");
  EXPECT_EQ(pos, 3);
  pos = 99;
  EXPECT_EQ(CString("ab").Tokenize(",", pos), "");
  EXPECT_EQ(pos, -1);
}

TEST(StringFormat, FormatReplacesAppendFormatAppends) {
  CString s("old");
  s.Format("%d-%s|%5.2f", 42, "x", 3.14159);
  EXPECT_EQ(s, "42-x| 3.14");
  s.AppendFormat("[%s]", CString("cs"));
  EXPECT_EQ(s, "42-x| 3.14[cs]");
  // The formatter never reads arguments it was not given.
  s.Format("%d %s %d", 7);
  EXPECT_EQ(s, "7  ");
}

TEST(StringWide, WideTextBecomesUtf8) {
  EXPECT_EQ(CString(L"ab").str(), "ab");
  EXPECT_EQ(CString(L"\u00E9\u20AC\U0001F600").str(), U({kEAcute, "\xE2\x82\xAC", kGrinning}));
  EXPECT_EQ(CString(L"abc", 2).str(), "ab");
  EXPECT_EQ(CString(L"abc", -1).str(), "");
  EXPECT_EQ(CString(static_cast<const wchar_t*>(nullptr)).str(), "");
  const wchar_t invalid[] = {L'a', static_cast<wchar_t>(0x110000), static_cast<wchar_t>(0xD800), 0};
  EXPECT_EQ(CString(invalid).str(), "a\xEF\xBF\xBD\xEF\xBF\xBD");
  CString s("old");
  s = L"\u00E9";
  EXPECT_EQ(s.str(), kEAcute);
}

TEST(StringReverse, MultiByteCharactersStayWhole) {
  struct Row {
    std::string text;
    std::string expected;
  };
  const Row rows[] = {
      {"abc", "cba"},
      {"", ""},
      {U({"a", kEAcute, "b"}), U({"b", kEAcute, "a"})},
      {U({"a", kGrinning, "\xE2\x82\xAC"}), U({"\xE2\x82\xAC", kGrinning, "a"})},
      // Invalid bytes are characters of their own.
      {"a\xA9",
       "\xA9"
       "a"},
      {"\xE2\x82z", "z\x82\xE2"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(CString(row.text).MakeReverse().str(), row.expected);
  }
}

}  // namespace
