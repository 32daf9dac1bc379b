// The numeric arrays' set operations, extremes and sentinels, the comparators that
// overflow on purpose, CDWordArrayEx's prefix comparison and the set and nestings built
// on CDWordArray.
#include <corlith/values/Values.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <string>
#include <vector>

namespace {

template <class ARRAY>
std::vector<int> Items(const ARRAY& a) {
  return {a.begin(), a.end()};
}

CArrayN MakeN(std::initializer_list<int> values) {
  CArrayN a;
  for (int v : values) a.Add(v);
  return a;
}

CDWordArray MakeDW(std::initializer_list<DWORD> values) {
  CDWordArray a;
  for (DWORD v : values) a.Add(v);
  return a;
}

TEST(NumericArrays, SetOperationsOnCArrayN) {
  CArrayN a = MakeN({3, 1, 3, 2, 1});
  CArrayN dedup = a;
  dedup.RemoveDuplicateElements();
  EXPECT_EQ(Items(dedup), (std::vector<int>{3, 1, 2}));
  CArrayN removed = a;
  removed.Remove(removed[0]);  // the argument refers into the array
  EXPECT_EQ(Items(removed), (std::vector<int>{1, 2, 1}));
  EXPECT_EQ(a.GetMaxVal(), 3);
  EXPECT_EQ(a.AddNotDuplication(2), FALSE);
  EXPECT_EQ(a.AddNotDuplication(7), TRUE);
  a.Add_in_SetMode(7);
  EXPECT_EQ(a.GetSize(), 6);
  EXPECT_EQ(MakeN({INT_MAX, 1}).SumTotal(), INT_MIN) << "the 32-bit sum wraps";
}

TEST(NumericArrays, SentinelsOfEmptyArrays) {
  EXPECT_EQ(CArrayN().GetMaxVal(), -2147483648LL);
  EXPECT_EQ(CNArrayL().GetMaxVal(), -2147483648LL);
  EXPECT_EQ(CNArrayL().GetMinVal(), 2147483647);
  EXPECT_EQ(CArrayD().SumTotal(), 0.0);
  EXPECT_THROW(static_cast<void>(CArrayD().GetMinElementIndex()), CInvalidArgException);
  CArrayD d;
  for (double v : {2.0, 1.0, 1.0}) d.Add(v);
  EXPECT_EQ(d.GetMinElementIndex(), 1);
}

TEST(NumericArrays, ComparatorsOverflowAsTheOriginalDid) {
  struct Row {
    int a, b, ascending;
  };
  for (const Row& row :
       {Row{1, 2, -1}, Row{2, 2, 0}, Row{INT_MAX, -2, -1}, Row{INT_MIN, 1, 1}, Row{-2, INT_MAX, 1}}) {
    SCOPED_TRACE(std::to_string(row.a) + " vs " + std::to_string(row.b));
    EXPECT_EQ(CArrayN::CompareForAscending(&row.a, &row.b), row.ascending);
    EXPECT_EQ(CNArrayL::Compare4Ascending(&row.a, &row.b), row.ascending);
    EXPECT_EQ(CNArrayL::Compare4Descending(&row.a, &row.b), -row.ascending);
  }
  CNArrayL l;
  l.Add(-2);
  l.Add(INT_MAX);
  l.Sort(1);
  EXPECT_EQ(Items(l), (std::vector<int>{INT_MAX, -2})) << "misordered by the overflowing difference";
  CArrayN n = MakeN({5, -1, 3});
  n.Sort(0);
  EXPECT_EQ(Items(n), (std::vector<int>{5, 3, -1}));
  // Many far-apart values: the order is inconsistent, the sort must still stay in bounds
  // and keep every element.
  CArrayN wild;
  for (int i = 0; i < 1000; ++i) wild.Add(static_cast<int>(static_cast<unsigned>(i) * 2654435761u));
  CArrayN sorted = wild;
  sorted.Sort(1);
  std::vector<int> before = Items(wild), after = Items(sorted);
  std::sort(before.begin(), before.end());
  std::sort(after.begin(), after.end());
  EXPECT_EQ(before, after);

  CArrayD dd;
  for (double v : {2.5, -1.0, 7.0}) dd.Add(v);
  dd.Sort(0);
  EXPECT_EQ(dd[0], 7.0);
  EXPECT_EQ(dd[2], -1.0);
}

TEST(DWordArrays, IsSameDataWithPrefixLength) {
  const CDWordArray a = MakeDW({1, 2, 3}), b = MakeDW({1, 2, 4});
  struct Row {
    int n;
    BOOL same;
  };
  for (const Row& row : {Row{-1, TRUE}, Row{0, TRUE}, Row{1, TRUE}, Row{2, FALSE}, Row{3, FALSE}}) {
    SCOPED_TRACE(row.n);
    EXPECT_EQ(CDWordArrayEx::IsSameData(a, b, row.n), row.same);
  }
  EXPECT_TRUE(CDWordArrayEx::IsSameData(CDWordArray(), CDWordArray(), -1));
  EXPECT_FALSE(CDWordArrayEx::IsSameData(CDWordArray(), CDWordArray(), 0)) << "needs more than n elements";
  EXPECT_TRUE(CDWordArrayEx::IsSameData(CDWordArray(), CDWordArray()));
  EXPECT_FALSE(CDWordArrayEx::IsSameData(a, b));
}

TEST(DWordArrays, SetRefusesEqualContentAndCopyAppends) {
  CDWordArraySet set;
  auto* first = new CDWordArray(MakeDW({1, 2}));
  EXPECT_TRUE(set.Add(first));
  CDWordArray duplicate = MakeDW({1, 2});
  EXPECT_FALSE(set.Add(&duplicate)) << "the caller keeps the array";
  EXPECT_EQ(set.GetSize(), 1);
  EXPECT_FALSE(set.Add(nullptr));
  EXPECT_TRUE(set.IsExist(&duplicate));

  CDWordArrayArray nest;
  nest.Add(new CDWordArray(MakeDW({7})));
  CDWordArrayArray more;
  more.Add(new CDWordArray(MakeDW({8, 9})));
  nest.Copy(more);
  ASSERT_EQ(nest.GetSize(), 2) << "kept, not replaced";
  EXPECT_NE(nest[1], more[0]) << "deep copy";
  nest.Copy(nest);
  EXPECT_EQ(nest.GetSize(), 4);
  CDWordArrayArray assigned;
  assigned = nest;
  EXPECT_TRUE(assigned == nest);
  (*assigned[3])[0] = 99;
  EXPECT_FALSE(assigned == nest);

  CDWordArrayArrayArray top;
  top.Copy(top);
  top.Add(new CDWordArrayArray(nest));
  CDWordArrayArrayArray top2;
  top2.Copy(top);
  EXPECT_TRUE(top2 == top);
}

}  // namespace
