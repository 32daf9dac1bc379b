// The property records: archive bytes of both records and both arrays against
// hand-built vectors (the texts CLProperty never stores), the loads of foreign versions
// and headers, equality (the third text of CLProperty ignored), deep copies, and
// pGetProperty whose flag changes nothing.
#include <corlith/services/Property.h>
#include <corlith/test/Bytes.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using corlith::test::ArchiveCause;
using corlith::test::Bytes;
using corlith::test::Cat;
using corlith::test::Dwords;
using corlith::test::Header;
using corlith::test::Hex;
using corlith::test::Load;
using corlith::test::ShortString;
using corlith::test::Store;

CLProperty LRecord(const char* a, const char* b, const char* c) {
  CLProperty p;
  p.m_strText1 = a;
  p.m_strText2 = b;
  p.m_strText3 = c;
  return p;
}

TEST(PropertyArchive, StoresTheHandBuiltBytes) {
  CGPropertyArray gArray;
  gArray.Add(new CGProperty("net", "power rail"));
  gArray.Add(new CGProperty("", "x"));
  CLPropertyArray lArray;
  lArray.Add(new CLProperty(LRecord("a", "b", "c")));
  lArray.Add(new CLProperty(LRecord("long text never stored", "", "")));

  struct Row {
    const char* name;
    Bytes stored;
    Bytes expected;
  };
  const Row rows[] = {
      {"CGProperty: version 2, name, comment", Store(CGProperty("net", "power rail")),
       Cat({Dwords({2}), ShortString("net"), ShortString("power rail")})},
      {"CGProperty with empty texts", Store(CGProperty()),
       Cat({Dwords({2}), ShortString(""), ShortString("")})},
      {"CLProperty: the version word alone", Store(LRecord("a", "b", "c")), Dwords({1})},
      {"CGPropertyArray: header, count, each record", Store(gArray),
       Cat({Header(2), Dwords({2}), ShortString("net"), ShortString("power rail"), Dwords({2}),
            ShortString(""), ShortString("x")})},
      {"CLPropertyArray of two: 20 bytes, no text", Store(lArray),
       Bytes{0x01, 0x00, 0x00, 0x80, 0x02, 0, 0, 0, 0, 0, 0, 0, 0x01, 0, 0, 0, 0x01, 0, 0, 0}},
      {"an empty array: header and count 0", Store(CLPropertyArray()), Header(0)},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(Hex(row.stored), Hex(row.expected));
  }
}

TEST(PropertyArchive, LoadsRecordsAndSkipsForeignVersionsSilently) {
  struct Row {
    const char* name;
    Bytes bytes;
    std::string name_after;
    std::string comment_after;
    std::size_t consumed;
  };
  const Row rows[] = {
      {"version 2 loads both texts", Cat({Dwords({2}), ShortString("gnd"), ShortString("ground")}), "gnd",
       "ground", 4 + 4 + 7},
      {"version 1 loads nothing further and keeps the texts",
       Cat({Dwords({1}), ShortString("gnd"), ShortString("ground")}), "old name", "old comment", 4},
      {"version 3 the same", Cat({Dwords({3}), ShortString("gnd")}), "old name", "old comment", 4},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    CGProperty property("old name", "old comment");
    EXPECT_EQ(Load(row.bytes, property), row.consumed);
    EXPECT_EQ(property.m_strName.str(), row.name_after);
    EXPECT_EQ(property.GetComment().str(), row.comment_after);
  }

  // CLProperty reads one word whatever it holds and keeps its texts.
  for (const std::uint32_t version : {1U, 0U, 2U, 0xFFFFFFFFU}) {
    SCOPED_TRACE(version);
    CLProperty property = LRecord("a", "b", "c");
    EXPECT_EQ(Load(Cat({Dwords({version}), ShortString("zz")}), property), 4U);
    EXPECT_EQ(property, LRecord("a", "b", "c"));
    EXPECT_EQ(property.m_strText3, CString("c"));
  }
}

TEST(PropertyArchive, ArraysLoadByThePointerArrayConvention) {
  struct Row {
    const char* name;
    Bytes bytes;
    std::vector<std::string> names;  // loaded CGPropertyArray names
    std::size_t consumed;
  };
  const Row rows[] = {
      {"the current header",
       Cat({Header(2), Dwords({2}), ShortString("a"), ShortString("1"), Dwords({2}), ShortString("b"),
            ShortString("2")}),
       {"a", "b"},
       12 + 2 * (4 + 2 + 2)},
      {"the older header with a 4-byte count",
       Cat({Dwords({1, 1, 2}), ShortString("a"), ShortString("1")}),
       {"a"},
       12 + 4},
      {"a foreign header loads nothing and consumes only its word",
       Cat({Dwords({0x80000002U}), Header(1)}),
       {},
       4},
      {"a record of a foreign version stays empty and the stream goes on out of step",
       Cat({Header(2), Dwords({1}), Dwords({2}), ShortString("b"), ShortString("2")}),
       {"", "b"},
       12 + 4 + 8},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    CGPropertyArray array;
    array.Add(new CGProperty("stale", "gone on load"));
    EXPECT_EQ(Load(row.bytes, array), row.consumed);
    std::vector<std::string> names;
    for (const CGProperty* p : array) names.push_back(p->m_strName.str());
    EXPECT_EQ(names, row.names);
  }

  // The 20-byte CLPropertyArray: two records, texts empty.
  CLPropertyArray loaded;
  loaded.Add(new CLProperty(LRecord("x", "y", "z")));
  EXPECT_EQ(Load(Cat({Header(2), Dwords({1, 1})}), loaded), 20U);
  ASSERT_EQ(loaded.GetSize(), 2);
  for (const CLProperty* p : loaded) {
    EXPECT_TRUE(p->m_strText1.IsEmpty() && p->m_strText2.IsEmpty() && p->m_strText3.IsEmpty());
  }
}

TEST(PropertyArchive, AHostileCountEndsInEndOfFileWithoutAllocatingForIt) {
  CGPropertyArray gArray;
  EXPECT_EQ(ArchiveCause([&] {
              Load(Cat({Header(0x7FFFFFFFFFFFULL), Dwords({2}), ShortString("a")}), gArray);
            }),
            CArchiveException::endOfFile);
  CLPropertyArray lArray;
  EXPECT_EQ(ArchiveCause([&] {
              Load(Cat({Header(1ULL << 40), Dwords({1, 1, 1})}), lArray);
            }),
            CArchiveException::endOfFile);
  EXPECT_EQ(lArray.GetSize(), 3);  // what was read before the end stays, owned
}

TEST(PropertyEquality, CGPropertyComparesBothTextsAndCLPropertyOnlyTheFirstTwo) {
  struct GRow {
    const char* name;
    CGProperty a;
    CGProperty b;
    bool equal;
  };
  const GRow gRows[] = {
      {"same texts", {"net", "c"}, {"net", "c"}, true},
      {"name differs in case", {"net", "c"}, {"NET", "c"}, false},
      {"comment differs", {"net", "c"}, {"net", "d"}, false},
      {"both empty", {}, {}, true},
  };
  for (const GRow& row : gRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(row.a == row.b, row.equal ? 1 : 0);
    EXPECT_EQ(row.a != row.b, row.equal ? 0 : 1);
  }
  struct LRow {
    const char* name;
    CLProperty a;
    CLProperty b;
    bool equal;
  };
  const LRow lRows[] = {
      {"only the third text differs: equal", LRecord("a", "b", "c"), LRecord("a", "b", "zzz"), true},
      {"the first differs", LRecord("a", "b", "c"), LRecord("x", "b", "c"), false},
      {"the second differs in case", LRecord("a", "b", "c"), LRecord("a", "B", "c"), false},
  };
  for (const LRow& row : lRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(row.a == row.b, row.equal ? 1 : 0);
    EXPECT_EQ(row.a != row.b, row.equal ? 0 : 1);
  }
}

TEST(PropertyArrays, CopiesAreDeepAndCompareElementWise) {
  CGPropertyArray original;
  original.Add(new CGProperty("a", "1"));
  original.Add(new CGProperty("b", "2"));
  std::unique_ptr<CGPropertyArray> clone(original.clone());
  ASSERT_EQ(clone->GetSize(), 2);
  EXPECT_NE(clone->GetAt(0), original.GetAt(0));
  EXPECT_TRUE(*clone == original);
  clone->GetAt(1)->SetComment("changed");
  EXPECT_TRUE(*clone != original);
  EXPECT_EQ(original.GetAt(1)->GetComment(), CString("2"));

  CLPropertyArray lOriginal;
  lOriginal.Add(new CLProperty(LRecord("a", "b", "c")));
  CLPropertyArray lCopy(lOriginal);
  lCopy.GetAt(0)->m_strText3 = "other";
  EXPECT_TRUE(lCopy == lOriginal);  // the third text takes no part
  lCopy.GetAt(0)->m_strText1 = "other";
  EXPECT_FALSE(lCopy == lOriginal);
  lCopy = lOriginal;
  EXPECT_EQ(lCopy.GetAt(0)->m_strText3, CString("c"));

  CGProperty self("n", "c");
  const CGProperty& alias = self;
  self = alias;
  EXPECT_EQ(self, CGProperty("n", "c"));
  std::unique_ptr<CGProperty> heap(self.clone());
  EXPECT_EQ(*heap, self);
}

TEST(PropertyArrays, GetPropertyComparesCaseSensitivelyWhateverTheFlag) {
  CGPropertyArray array;
  array.Add(new CGProperty("NET", "upper"));
  array.Add(new CGProperty("net", "first lower"));
  array.Add(new CGProperty("net", "second lower"));
  struct Row {
    const char* name;
    const char* comment;  // of the element found; null for none
  };
  const Row rows[] = {
      {"NET", "upper"}, {"net", "first lower"}, {"Net", nullptr}, {"", nullptr}, {"ne", nullptr},
  };
  for (const int flag : {0, 1, -7}) {
    for (const Row& row : rows) {
      SCOPED_TRACE(std::string(row.name) + " flag " + std::to_string(flag));
      const CGProperty* found = array.pGetProperty(row.name, flag);
      if (row.comment) {
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(found->GetComment(), CString(row.comment));
      } else {
        EXPECT_EQ(found, nullptr);
      }
    }
  }
}

}  // namespace
