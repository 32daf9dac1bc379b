// CStringEx's hash, prefix and suffix tests and file reading; the arrays' look-ups, sorts
// and joins; the set rules; CStringArrayArray's CSV form through real files (blank
// removal, comma quoting, trailing-comma trim, quotes not understood on load); archive
// round trips of every serialisable class here.
#include <corlith/framework/Archive.h>
#include <corlith/framework/Exceptions.h>
#include <corlith/framework/MemFile.h>
#include <corlith/test/Bytes.h>
#include <corlith/test/TempFolder.h>
#include <corlith/text/StringEx.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// A real folder for the file tests.
class TempFolder : public testing::Test {
 protected:
  CString Path(const char* name) const { return CString(m_folder.PathOf(name)); }
  static std::string Slurp(const CString& path) { return corlith::test::ReadFile(path.GetString()); }
  static void Spit(const CString& path, const std::string& bytes) {
    ASSERT_TRUE(corlith::test::WriteFile(path.GetString(), bytes));
  }
  corlith::test::TempFolder m_folder{"strex"};
};

template <class T>
void RoundTrip(T& in, T& out) {
  corlith::test::Load(corlith::test::Store(in), out);
}

std::vector<std::string> Texts(const CStringExArray& a) {
  std::vector<std::string> out;
  for (const CStringEx& s : a) out.emplace_back(s.GetText().GetString());
  return out;
}

TEST(StringEx, HashSignExtendsBytes) {
  EXPECT_EQ(CStringEx::MakeHash(""), 5381u);
  EXPECT_EQ(CStringEx::MakeHash(nullptr), 5381u);
  EXPECT_EQ(CStringEx::MakeHash("a"), 177670u);
  EXPECT_EQ(CStringEx::MakeHash("ab"), 177670u * 33u + 98u);
  // 0xE9 adds -23, not 233.
  EXPECT_EQ(CStringEx::MakeHash("\xE9"), 5381u * 33u - 23u);
  // Wrap-around in 32 bits.
  const std::string longText(40, 'z');
  unsigned int h = 5381;
  for (char c : longText) h = h * 33u + static_cast<unsigned char>(c);
  EXPECT_EQ(CStringEx::MakeHash(longText.c_str()), h);
  CStringEx text("GND");
  EXPECT_EQ(text.MakeHash(), CStringEx::MakeHash("GND"));
  EXPECT_EQ(text.GetText(), CString("GND"));
}

TEST(StringEx, PrefixSuffixAndConversions) {
  const CStringEx s("NET_GND");
  EXPECT_EQ(s.IsStartWith("NET"), 1);
  EXPECT_EQ(s.IsStartWith(""), 1);
  EXPECT_EQ(s.IsStartWith("GND"), 0);
  EXPECT_EQ(s.IsEndWith("GND"), 1);
  EXPECT_EQ(s.IsEndWith(""), 1);
  EXPECT_EQ(s.IsEndWith("net_gnd"), 0);
  EXPECT_EQ(s.IsEndWith("X_NET_GND"), 0);
  // The CLString behaviour comes along: the fixed formats and the saturating atoi.
  EXPECT_EQ(CStringEx(1234.5678).GetText(), CString("1.23e+03"));
  CStringEx n;
  n = 42;
  EXPECT_EQ(n.GetText(), CString("42"));
  EXPECT_EQ(CStringEx("99999999999999").ToInteger(), 2147483647);
}

TEST_F(TempFolder, ReadFromTxtFileAppendsCrLfLines) {
  const CString path = Path("lines.txt");
  Spit(path, "one\r\ntwo\n\nthree");
  CStringEx s("head:");
  s.ReadFromTxtFile(path);
  EXPECT_EQ(s.GetText(), CString("head:one\r\ntwo\r\n\r\nthree\r\n"));
  s.ReadFromTxtFile(Path("missing.txt"));
  EXPECT_EQ(s.GetText(), CString("head:one\r\ntwo\r\n\r\nthree\r\n"));
}

TEST(StringExArray, FindSortSwapAndJoin) {
  CStringExArray a;
  for (const char* s : {"b", "B", "a", "b", "A"}) a.Add(s);
  EXPECT_EQ(a.Find("b"), 0);
  EXPECT_EQ(a.Find("b", 1), 3);
  EXPECT_EQ(a.Find("b", 4), -1);
  EXPECT_EQ(a.Find("b", 5), -1);
  EXPECT_EQ(a.Find("x"), -1);
  EXPECT_THROW(a.Find("b", -1), CInvalidArgException);  // an index error, as element access
  EXPECT_EQ(a.DoesExist("A"), 1);
  CStringExArray b(a);
  a.Sort(0);
  b.Sort(1);
  EXPECT_EQ(Texts(a), (std::vector<std::string>{"A", "B", "a", "b", "b"}));
  EXPECT_EQ(Texts(b), Texts(a));
  // CompareAndSwap ignores case: "B" and "a" swap, "a" and "b" do not.
  EXPECT_EQ(a.CompareAndSwap(1), 1);
  EXPECT_EQ(Texts(a), (std::vector<std::string>{"A", "a", "B", "b", "b"}));
  EXPECT_EQ(a.CompareAndSwap(2), 0);
  EXPECT_THROW(a.CompareAndSwap(4), CInvalidArgException);
  EXPECT_THROW(a.CompareAndSwap(-1), CInvalidArgException);

  CStringExArray seven;
  for (int i = 0; i < 7; ++i) seven.Add(CString(static_cast<char>('0' + i)));
  EXPECT_EQ(seven.GetAllElementContents(", "), CString("0, 1, 2, 3, 4, 5, 6"));
  EXPECT_EQ(seven.GetAllElementContents_ElementDivision(","), CString("0,1,2,3,4,\n5,6"));
  EXPECT_EQ(CStringExArray().GetAllElementContents(","), CString(""));

  CStringArray plain;
  CStringExArray::ConvertCStringExArrayToCStringArray(seven, plain);
  ASSERT_EQ(plain.GetSize(), 7);
  CStringExArray back;
  back = plain;
  EXPECT_EQ(back == seven, 1);
}

TEST_F(TempFolder, SaveToAsciiInElementList) {
  CStringExArray a;
  a.Add("R1");
  a.Add("C2");
  a.SaveToASCII_in_ElementList(Path("list.txt"));
  EXPECT_EQ(Slurp(Path("list.txt")), "R1\nC2");
}

TEST(StringExSet, NoDuplicatesOrderedEqualityAndExtract) {
  CStringExSet s;
  EXPECT_EQ(s.Add("R1"), 0);
  EXPECT_EQ(s.Add(CString("R2")), 1);
  EXPECT_EQ(s.Add(CStringEx("R1")), -1);
  EXPECT_EQ(s.Add("r1"), 2);  // case-sensitive
  CStringArray more;
  more.Add("R2");
  more.Add("R3");
  s = more;  // adds through Add, keeps what was there
  EXPECT_EQ(Texts(s), (std::vector<std::string>{"R1", "R2", "r1", "R3"}));
  EXPECT_EQ(s == s, 1);
  CStringExSet same(s);
  EXPECT_EQ(s == same, 1);
  CStringExSet reordered;
  for (const char* t : {"R2", "R1", "r1", "R3"}) reordered.Add(t);
  EXPECT_EQ(s == reordered, 0);  // order matters
  CStringExSet drop;
  drop.Add("R1");
  drop.Add("R9");
  drop.Add("R3");
  s.Extract(drop);
  EXPECT_EQ(Texts(s), (std::vector<std::string>{"R2", "r1"}));
}

// The set's index follows every way the array can change: after each step, Add refuses
// exactly the texts a scan finds, and Find answers the scan's first index.
TEST(StringExSet, IndexFollowsEveryChangeOfTheArray) {
  const char* const universe[] = {"a", "b", "c", "d", "x", "zz", "p", "q"};
  CStringExSet set;
  auto expectInStep = [&](const char* step) {
    SCOPED_TRACE(step);
    for (const char* text : universe) {
      EXPECT_EQ(set.Find(text), set.CStringExArray::Find(text, 0)) << text;
      EXPECT_EQ(set.DoesExist(text), set.CStringExArray::Find(text, 0) != -1 ? 1 : 0) << text;
    }
  };
  for (const char* t : {"a", "b", "c"}) set.Add(t);
  expectInStep("added");
  CStringEx x("x");
  set.SetAt(1, x);
  expectInStep("SetAt");
  EXPECT_EQ(set.Add("b"), 3);
  set[0] = CStringEx("zz");
  expectInStep("operator[]");
  EXPECT_EQ(set.Add("zz"), -1);
  set.RemoveAt(0);
  expectInStep("RemoveAt");
  CStringEx d("d");
  set.InsertAt(0, d);
  expectInStep("InsertAt");
  CStringExArray& base = set;
  base.Add(CString("p"));  // not through the set's own Add
  expectInStep("base Add");
  EXPECT_EQ(set.Add("p"), -1);
  set.BasicSort();
  expectInStep("sorted");
  {
    CStringExSet stored;
    for (const char* t : {"q", "a"}) stored.Add(t);
    CMemFile file;
    {
      CArchive ar(&file, CArchive::store);
      stored.Serialize(ar);
    }
    file.SeekToBegin();
    CArchive ar(&file, CArchive::load);
    set.Serialize(ar);
  }
  expectInStep("loaded");
  EXPECT_EQ(set.Add("q"), -1);
  CStringExSet copy(set);
  copy.Add("c");
  EXPECT_EQ(copy.Find("c"), 2);
  EXPECT_EQ(set.Find("c"), -1);
  set = copy;
  expectInStep("assigned");
  CStringExSet moved(std::move(set));
  expectInStep("moved from");  // valid but unspecified: the index must not point past it
  EXPECT_EQ(moved.Add("c"), -1);
  set.RemoveAll();
  expectInStep("emptied");
  EXPECT_EQ(set.Add("c"), 0);
}

CStringArrayArray Table(std::initializer_list<std::initializer_list<const char*>> rows) {
  CStringArrayArray t;
  for (const auto& cells : rows) {
    auto* row = new CStringArray;  // the table owns it from Add on
    for (const char* c : cells) row->Add(c);
    t.Add(row);
  }
  return t;
}

TEST_F(TempFolder, CsvSaveWritesTheStatedText) {
  const struct {
    const char* name;
    CStringArrayArray table;
    const char* bytes;
  } rows[] = {
      {"plain", Table({{"a", "b"}, {"c"}}), "a,b\r\nc\r\n"},
      {"blanks removed", Table({{"a b", " c "}}), "ab,c\r\n"},
      {"comma quoted", Table({{"x,y", "z"}}), "\"x,y\",z\r\n"},
      {"quoted blanks too", Table({{"x, y"}}), "\"x,y\"\r\n"},
      {"trailing empty cells vanish", Table({{"a", "", " ", ""}}), "a\r\n"},
      {"inner empty cells stay", Table({{"a", "", "b"}}), "a,,b\r\n"},
      {"empty rows", Table({{}, {"", ""}, {"a"}}), "\r\n\r\na\r\n"},
      {"no rows", Table({}), ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    row.table.SaveToCSV_File(Path("t.csv"));
    EXPECT_EQ(Slurp(Path("t.csv")), row.bytes);
  }
  // An unwritable path is silent.
  Table({{"a"}}).SaveToCSV_File(Path("no/such/folder/t.csv"));
}

TEST_F(TempFolder, CsvRoundTripsThroughRealFiles) {
  CStringArrayArray table = Table({{"R1", "10k", "0402"}, {"C1", "100n"}, {"U1", "MCU", "QFP", "64"}});
  table.SaveToCSV_File(Path("parts.csv"));
  CStringArrayArray loaded;
  EXPECT_EQ(loaded.LoadToCSV_File(Path("parts.csv")), 1);
  EXPECT_EQ(loaded == table, 1);
  EXPECT_EQ(loaded.GetMaxColSize(), 4);

  // What the save loses stays lost; quotes are not understood on load.
  CStringArrayArray lossy = Table({{"a b", "x,y", "", "c", ""}});
  lossy.SaveToCSV_File(Path("lossy.csv"));
  CStringArrayArray back;
  EXPECT_EQ(back.LoadToCSV_File(Path("lossy.csv")), 1);
  EXPECT_EQ(back == Table({{"ab", "\"x", "y\"", "c"}}), 1);

  // Loading appends rows; blank lines are skipped; a line of commas is an empty row.
  Spit(Path("odd.csv"), "a,,b\n\n,,,\r\nc\n");
  EXPECT_EQ(back.LoadToCSV_File(Path("odd.csv")), 1);
  EXPECT_EQ(back == Table({{"ab", "\"x", "y\"", "c"}, {"a", "b"}, {}, {"c"}}), 1);

  Spit(Path("empty.csv"), "\n\n");
  EXPECT_EQ(back.LoadToCSV_File(Path("empty.csv")), 0);
  EXPECT_EQ(back.LoadToCSV_File(Path("missing.csv")), 0);
  EXPECT_EQ(back.LoadToCSV_File(""), 0);
  EXPECT_EQ(back.GetSize(), 4);
}

TEST(StringArrayArray, ColumnsPaddingCopiesAndArchive) {
  CStringArrayArray t = Table({{"a", "b", "c"}, {"d"}, {}});
  t.SetDummyStringForSquareString();
  EXPECT_EQ(t == Table({{"a", "b", "c"}, {"d", "..", ".."}, {"..", "..", ".."}}), 1);
  t.RemoveColumn(1);
  EXPECT_EQ(t == Table({{"a", "c"}, {"d", ".."}, {"..", ".."}}), 1);
  // A column a row does not have is an index error, not a silent skip.
  EXPECT_THROW(t.RemoveColumn(5), CInvalidArgException);
  EXPECT_THROW(t.RemoveColumn(-1), CInvalidArgException);
  CStringArrayArray copy(t);
  EXPECT_EQ(copy == t, 1);
  (*copy.GetAt(0))[0] = "z";  // a deep copy
  EXPECT_EQ(copy != t, 1);
  EXPECT_EQ(t == Table({{"a", "c"}}), 0);

  CStringArrayArray loaded = Table({{"old"}});
  RoundTrip(t, loaded);
  EXPECT_EQ(loaded == t, 1);

  // A hostile row count ends in end-of-file, keeping the rows read.
  CMemFile file;
  {
    CArchive ar(&file, CArchive::store);
    corlith::StoreArrayHeader(ar, 1'000'000'000);
    ar.Close();
  }
  file.SeekToBegin();
  CArchive ar(&file, CArchive::load);
  CStringArrayArray hostile;
  EXPECT_THROW(hostile.Serialize(ar), CArchiveException);
  EXPECT_EQ(hostile.GetSize(), 0);
}

TEST(StringExArrays, ArchiveRoundTrips) {
  CStringExArray a;
  a.Add("R1");
  a.Add("");
  a.Add("NET_\xE9");
  CStringExArray a2;
  RoundTrip(a, a2);
  EXPECT_EQ(a2 == a, 1);

  CStringExArrayArray aa;
  aa.Add(a);
  CStringExArray none;
  aa.Add(none);
  CStringExArrayArray aa2;
  RoundTrip(aa, aa2);
  EXPECT_EQ(aa2 == aa, 1);
  ASSERT_EQ(aa2.GetSize(), 2);
  EXPECT_EQ(aa2[0].GetSize(), 3);

  CStringExSet s;
  s.Add("x");
  s.Add("y");
  CStringExSet s2;
  RoundTrip(s, s2);
  EXPECT_EQ(s2 == s, 1);

  CStringArrayEx e;
  for (const char* t : {"b", "a", "b", "c", "a"}) e.Add(t);
  e.RemoveDuplicatedElements();
  ASSERT_EQ(e.GetSize(), 3);
  EXPECT_EQ(e[0] + e[1] + e[2], CString("bac"));
  CStringArrayEx e2;
  RoundTrip(e, e2);
  ASSERT_EQ(e2.GetSize(), 3);
  EXPECT_EQ(e2[2], CString("c"));
}

}  // namespace
