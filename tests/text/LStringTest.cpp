// CLString's fixed number formats and conversions (including the saturating atoi), its
// containment tests, the tag-1 archive form byte for byte, SaveToASCII on a real file,
// and CLStringArray's joining, splitting and de-duplication.
#include <corlith/framework/Archive.h>
#include <corlith/test/Arrays.h>
#include <corlith/test/Bytes.h>
#include <corlith/test/TempFolder.h>
#include <corlith/text/LString.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

namespace {

using corlith::test::Bytes;
using corlith::test::Store;

void Load(CObject& obj, const Bytes& bytes) { corlith::test::Load(bytes, obj); }

std::vector<std::string> Elements(const CStringArray& a) { return corlith::test::ToStrings(a); }

TEST(LString, NumbersUseTheFixedShortFormats) {
  EXPECT_EQ(CLString(1234.5678).GetText(), CString("1.23e+03"));
  EXPECT_EQ(CLString(0.5).GetText(), CString("0.5"));
  EXPECT_EQ(CLString(0.25f).GetText(), CString("0.25"));
  EXPECT_EQ(CLString(-7).GetText(), CString("-7"));
  EXPECT_EQ(CLString(INT_MIN).GetText(), CString("-2147483648"));
  EXPECT_EQ(CLString(3000000000ul).GetText(), CString("-1294967296"));
  EXPECT_EQ(CLString(2147483647ul).GetText(), CString("2147483647"));
  EXPECT_EQ(CLString(0x100000005ul).GetText(), CString("5"));  // the original's long is 32 bits

  // operator= uses the same format as the constructor of the same type.
  CLString s;
  s = 3000000000ul;
  EXPECT_EQ(s.GetText(), CString("-1294967296"));
  s = 1234.5678;
  EXPECT_EQ(s.GetText(), CString("1.23e+03"));
  s = 0.125f;
  EXPECT_EQ(s.GetText(), CString("0.125"));
  s = 42;
  EXPECT_EQ(s.GetText(), CString("42"));
  s = L"w\u00e9";
  EXPECT_EQ(s.GetText(), CString("w\xC3\xA9"));

  EXPECT_EQ(CLString("abcdef", 3).GetText(), CString("abc"));
  EXPECT_EQ(CLString(L"abcdef", 2).GetText(), CString("ab"));
  // A count past the end of the text stops at its end instead of reading beyond it.
  EXPECT_EQ(CLString("abc", 40).GetText(), CString("abc"));
  EXPECT_EQ(CLString(L"ab", 9).GetText(), CString("ab"));
  EXPECT_EQ(CLString(static_cast<const char*>(nullptr), 3).GetText(), CString());
  EXPECT_EQ(CLString('x', 3).GetText(), CString("xxx"));
  EXPECT_EQ(CLString('x', -1).GetText(), CString());
}

TEST(LString, ConversionsFollowAtoiAndSaturate) {
  struct Row {
    const char* text;
    int asInt;
    double asDouble;
  };
  const Row rows[] = {
      {"12abc", 12, 12.0},
      {"abc", 0, 0.0},
      {"  \t-34", -34, -34.0},
      {"+5", 5, 5.0},
      {"2.75", 2, 2.75},
      {"", 0, 0.0},
      {"- 3", 0, 0.0},
      {"2147483647", INT_MAX, 2147483647.0},
      {"2147483648", INT_MAX, 2147483648.0},
      {"-2147483648", INT_MIN, -2147483648.0},
      {"-2147483649", INT_MIN, -2147483649.0},
      {"99999999999999999999999999999999", INT_MAX, 1e32},
      {"-000000000000000000000000000000017", -17, -17.0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    const CLString s(row.text);
    EXPECT_EQ(s.ToInteger(), row.asInt);
    EXPECT_EQ(static_cast<int>(s), row.asInt);
    EXPECT_EQ(static_cast<unsigned long>(s), static_cast<unsigned long>(row.asInt));
    EXPECT_DOUBLE_EQ(s.ToDouble(), row.asDouble);
    EXPECT_FLOAT_EQ(static_cast<float>(s), static_cast<float>(row.asDouble));
  }
}

TEST(LString, ContainmentAndDigitsOnly) {
  const CLString s("VIA_12");
  EXPECT_EQ(s.IsContain("Via", 0), 1);
  EXPECT_EQ(s.IsContain("Via", 1), 0);
  EXPECT_EQ(s.IsContain("VIA", 1), 1);
  EXPECT_EQ(s.IsContain("", 1), 1);
  EXPECT_EQ(CLString().IsContain("", 0), 1);
  EXPECT_EQ(s.IsContain("_13", 0), 0);

  struct Row {
    const char* text;
    int expected;
  };
  for (const Row& row : {Row{"", 1}, Row{"0123456789", 1}, Row{"12 ", 0}, Row{"-1", 0}, Row{"1.5", 0},
                         Row{"+1", 0}, Row{"\xD9\xA1", 0}}) {
    SCOPED_TRACE(row.text);
    CString text(row.text);
    EXPECT_EQ(CLString::IsOnlyNumberString(text), row.expected);
  }

  CLString padded(" \t x y \n");
  padded.TrimLeftRight();
  EXPECT_EQ(padded.GetText(), CString("x y"));
}

TEST(LString, ArchiveFormIsTagOneThenTheString) {
  CLString s("abc");
  EXPECT_EQ(Store(s), (Bytes{1, 0, 0, 0, 3, 'a', 'b', 'c'}));

  CLString loaded("old");
  Load(loaded, {1, 0, 0, 0, 2, 'h', 'i'});
  EXPECT_EQ(loaded.GetText(), CString("hi"));

  // deliberate: another tag reads nothing more and keeps the text
  CLString skipped("old");
  Load(skipped, {2, 0, 0, 0, 2, 'h', 'i'});
  EXPECT_EQ(skipped.GetText(), CString("old"));

  CLString truncated;
  EXPECT_THROW(Load(truncated, {1, 0, 0, 0, 5, 'a'}), CArchiveException);
  EXPECT_THROW(Load(truncated, {1, 0}), CArchiveException);
}

TEST(LString, SaveToAsciiWritesTheTextAsItStands) {
  const corlith::test::TempFolder dir("lstring");
  const std::string path = dir.Write("out.txt", "a much longer previous content");
  CLString("line1\nline2").SaveToASCII(path.c_str());
  EXPECT_EQ(corlith::test::ReadFile(path), "line1\nline2");

  // An unopenable path is silently ignored.
  EXPECT_NO_THROW(CLString("x").SaveToASCII(dir.PathOf("missing/out.txt").c_str()));
  EXPECT_FALSE(std::filesystem::exists(dir.Path() / "missing"));
}

TEST(LStringArray, JoiningTrimsTheSeparatorAsACharacterSet) {
  struct Row {
    std::vector<const char*> elements;
    const char* separator;
    int quote;
    const char* expected;
  };
  const Row rows[] = {
      {{"a", "b "}, ", ", 0, "a, b"},  // the last element's blank goes too
      {{"a", "b,,"}, ", ", 0, "a, b"},
      {{"a", "b"}, ", ", 1, "\"a\", \"b\""},
      {{"x"}, "|", 0, "x"},
      {{}, ", ", 0, ""},
      {{"a", "b"}, "", 0, "ab"},
      {{",", ","}, ",", 0, ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.expected);
    CLStringArray a;
    for (const char* e : row.elements) a.Add(e);
    EXPECT_EQ(a.GetAllElementContents(row.separator, row.quote), CString(row.expected));
  }
}

TEST(LStringArray, SplitExistsAndDeduplicate) {
  CLStringArray a;
  a.Add("stale");
  a.SetElementContents(",a,,b;c,", ",;");
  EXPECT_EQ(Elements(a), (std::vector<std::string>{"a", "b", "c"}));
  EXPECT_EQ(a.Exists("b"), 1);
  EXPECT_EQ(a.Exists("B"), 0);
  EXPECT_EQ(a.Exists(""), 0);

  CLStringArray d;
  for (const char* e : {"x", "y", "x", "x", "z", "y", "x"}) d.Add(e);
  d.RemoveDuplicateElements();
  EXPECT_EQ(Elements(d), (std::vector<std::string>{"x", "y", "z"}));

  CStringArray plain;
  plain.Add("p");
  CLStringArray copied(plain);
  CLStringArray assigned;
  assigned.Add("gone");
  assigned = plain;
  EXPECT_EQ(Elements(copied), (std::vector<std::string>{"p"}));
  EXPECT_EQ(Elements(assigned), (std::vector<std::string>{"p"}));
}

TEST(LStringArray, UsesTheFrameworkArrayArchiveForm) {
  CLStringArray a;
  a.Add("ab");
  a.Add("");
  EXPECT_EQ(Store(a), (Bytes{2, 0, 2, 'a', 'b', 0}));
  CLStringArray back;
  Load(back, {2, 0, 2, 'a', 'b', 0});
  EXPECT_EQ(Elements(back), (std::vector<std::string>{"ab", ""}));
}

}  // namespace
