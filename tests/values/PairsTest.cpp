// Pairs, their look-ups and sets: order-free equality of string and DWORD pairs, the
// -1 / -2147483648 results of failed look-ups, and the sort by key and direction, also
// from two threads at once.
#include <corlith/test/Arrays.h>
#include <corlith/values/Values.h>

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <thread>
#include <vector>

namespace {

std::vector<std::string> Strings(const CIntStringPairArray& a) {
  return corlith::test::ToVector(a, [](const CIntStringPair* p) { return p->string.str(); });
}

TEST(Pairs, OrderFreeEqualityOfStringAndDWordPairs) {
  EXPECT_TRUE(CStringPair("A", "B") == CStringPair("B", "A"));
  EXPECT_FALSE(CStringPair("A", "B") == CStringPair("a", "B"));
  EXPECT_FALSE(CStringPair("A", "A") == CStringPair("A", "B"));
  EXPECT_TRUE(CDWordPair(1, 2) == CDWordPair(2, 1));
  EXPECT_FALSE(CIntPair(1, 2) == CIntPair(2, 1)) << "int pairs keep their order";

  CDWordPairSet dset;
  EXPECT_TRUE(dset.Add(CDWordPair(2, 1)));
  EXPECT_FALSE(dset.Add(CDWordPair(1, 2)));
  EXPECT_EQ(dset.Find(CDWordPair(1, 2)), 0);
  EXPECT_EQ(dset.Find(CDWordPair(1, 3)), -1);

  CStringPairSet sset;
  EXPECT_TRUE(sset.Add(new CStringPair("A", "B")));
  CStringPair swapped("B", "A");
  EXPECT_FALSE(sset.Add(&swapped)) << "not taken: the caller still owns it";
  EXPECT_EQ(sset.GetSize(), 1);
  EXPECT_EQ(sset.Find(CStringPair("a", "b")), -1);
}

TEST(Pairs, LookUpsAndTheirSentinels) {
  CIntPairArray a;
  a.AddElement(1, 10);
  a.AddElement(2, 20);
  a.SetPairDataInArray(0, 5, 5);
  a.SetPairDataInArray(-3, 5, 5);
  EXPECT_EQ(a.GetSize(), 2);
  EXPECT_EQ(a.GetMatchInteger1(20), 2);
  EXPECT_EQ(a.GetMatchInteger1(2), INT_MIN);
  EXPECT_EQ(a.GetMatchInteger2(2), 20);
  EXPECT_EQ(a.GetMatchInteger2(20), INT_MIN);
  EXPECT_EQ(a.GetMathchIndexInInt1(2), 1);
  EXPECT_EQ(a.GetMathchIndexInInt2(2), -1);

  CIntStringPairArray s;
  s.AddElement(7, "seven");
  s.AddElement(8, "Eight");
  EXPECT_EQ(s.GetMatchString(9), CString());
  EXPECT_EQ(s.GetMatchString(8), CString("Eight"));
  EXPECT_EQ(s.GetMathchIndex(CString("eight")), -1) << "case-sensitive";
  EXPECT_EQ(s.GetMatchInteger(CString("seven")), 7);
  EXPECT_EQ(s.GetMatchInteger(CString("none")), INT_MIN);
  EXPECT_EQ(s.GetMathchIndex(8), 1);
}

TEST(Pairs, SortByKeyAndDirection) {
  struct Row {
    int key, ascending;
    std::vector<std::string> expected;
  };
  for (const Row& row : {Row{1, 1, {"apple", "Banana", "cherry"}}, Row{1, 0, {"cherry", "Banana", "apple"}},
                         Row{0, 0, {"apple", "cherry", "Banana"}}, Row{0, 1, {"Banana", "cherry", "apple"}},
                         Row{5, 1, {"Banana", "apple", "cherry"}}}) {
    SCOPED_TRACE(std::to_string(row.key) + "/" + std::to_string(row.ascending));
    CIntStringPairArray a;
    a.AddElement(2, "Banana");
    a.AddElement(30, "apple");
    a.AddElement(5, "cherry");
    a.Sort(row.key, row.ascending);
    EXPECT_EQ(Strings(a), row.expected);
  }
}

TEST(Pairs, ConcurrentSortsKeepTheirOwnKeys) {
  // One thread sorts by integer descending, the other by string ascending; with a
  // shared hand-over one would use the other's key.
  auto make = [] {
    CIntStringPairArray a;
    for (int i = 0; i < 2000; ++i) a.AddElement(i, CString(std::to_string((i * 7919) % 2000).c_str()));
    return a;
  };
  for (int round = 0; round < 5; ++round) {
    CIntStringPairArray byInt = make(), byString = make();
    std::thread t1([&] { byInt.Sort(0, 0); });
    std::thread t2([&] { byString.Sort(1, 1); });
    t1.join();
    t2.join();
    for (INT_PTR i = 1; i < byInt.GetSize(); ++i) ASSERT_GT(byInt[i - 1]->integer, byInt[i]->integer);
    for (INT_PTR i = 1; i < byString.GetSize(); ++i)
      ASSERT_LE(byString[i - 1]->string.CollateNoCase(byString[i]->string), 0);
  }
}

TEST(Pairs, DeepCopiesAndNestedEquality) {
  CStringStringArrayPair p;
  p.string = "net";
  p.list.Add(CString("a"));
  CStringStringArrayPairArray arr;
  arr.Add(p.clone());
  CStringStringArrayPairArray copy(arr);
  EXPECT_TRUE(copy == arr);
  copy[0]->list.Add(CString("b"));
  EXPECT_FALSE(copy == arr);
  CStringArray out;
  out.Add(CString("old"));
  arr[0]->GetStringArray(out);
  EXPECT_EQ(out.GetSize(), 1);
  EXPECT_EQ(out[0], CString("a"));

  CIntPairArrayArray nest;
  auto* inner = new CIntPairArray;
  inner->AddElement(1, 2);
  nest.Add(inner);
  CIntPairArrayArray nestCopy;
  nestCopy = nest;
  EXPECT_TRUE(nestCopy == nest);
  EXPECT_NE(nestCopy[0], nest[0]);
}

}  // namespace
