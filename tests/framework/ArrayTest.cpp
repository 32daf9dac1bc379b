// CArray: the original's bounds rules (invalid-argument exceptions instead of
// silent corruption), its return values, value-initialised growth, and elements of
// the array itself passed to members that reallocate.
#include <corlith/framework/Array.h>
#include <corlith/framework/StringArray.h>
#include <corlith/test/Arrays.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace {

using corlith::test::ToVector;

CArray<int> Make(std::initializer_list<int> values) { return corlith::test::ArrayOf<CArray<int>>(values); }

// Long enough that the text lives on the heap, so a dangling reference to a moved
// or freed element is seen by the address sanitizer.
CString Long(int i) { return CString(std::string(40, static_cast<char>('a' + i % 26)) + std::to_string(i)); }

constexpr INT_PTR kMax = std::numeric_limits<INT_PTR>::max();
constexpr INT_PTR kMin = std::numeric_limits<INT_PTR>::min();

TEST(ArrayBounds, ElementAccessOutsideTheArrayThrows) {
  const std::pair<const char*, std::function<void(CArray<int>&, INT_PTR)>> accessors[] = {
      {"GetAt", [](CArray<int>& a, INT_PTR i) { a.GetAt(i); }},
      {"const GetAt", [](CArray<int>& a, INT_PTR i) { static_cast<const CArray<int>&>(a).GetAt(i); }},
      {"SetAt", [](CArray<int>& a, INT_PTR i) { a.SetAt(i, 9); }},
      {"ElementAt", [](CArray<int>& a, INT_PTR i) { a.ElementAt(i) = 9; }},
      {"operator[]", [](CArray<int>& a, INT_PTR i) { a[i] = 9; }},
      {"const operator[]", [](CArray<int>& a, INT_PTR i) { static_cast<const CArray<int>&>(a)[i]; }},
  };
  for (const auto& [name, access] : accessors) {
    for (INT_PTR index : {INT_PTR{-1}, INT_PTR{3}, INT_PTR{4}, kMax, kMin}) {
      SCOPED_TRACE(testing::Message() << name << "(" << index << ")");
      CArray<int> a = Make({1, 2, 3});
      EXPECT_THROW(access(a, index), CInvalidArgException);
      EXPECT_EQ(ToVector(a), (std::vector<int>{1, 2, 3}));
    }
    SCOPED_TRACE(name);
    CArray<int> empty;
    EXPECT_THROW(access(empty, 0), CInvalidArgException);
  }
}

TEST(ArrayBounds, BadSizesAndRangesThrowAndLeaveTheArrayAlone) {
  const std::pair<const char*, std::function<void(CArray<int>&)>> calls[] = {
      {"SetSize(-1)", [](CArray<int>& a) { a.SetSize(-1); }},
      {"InsertAt(-1, x)", [](CArray<int>& a) { a.InsertAt(-1, 9); }},
      {"InsertAt(0, x, 0)", [](CArray<int>& a) { a.InsertAt(0, 9, 0); }},
      {"InsertAt(1, x, -1)", [](CArray<int>& a) { a.InsertAt(1, 9, -1); }},
      {"InsertAt(-1, array)",
       [](CArray<int>& a) {
         const CArray<int> other = Make({7});
         a.InsertAt(-1, &other);
       }},
      {"InsertAt(0, null)", [](CArray<int>& a) { a.InsertAt(0, static_cast<const CArray<int>*>(nullptr)); }},
      {"RemoveAt(-1)", [](CArray<int>& a) { a.RemoveAt(-1); }},
      {"RemoveAt(3)", [](CArray<int>& a) { a.RemoveAt(3); }},
      {"RemoveAt(2, 2)", [](CArray<int>& a) { a.RemoveAt(2, 2); }},
      {"RemoveAt(0, 4)", [](CArray<int>& a) { a.RemoveAt(0, 4); }},
      {"RemoveAt(0, -1)", [](CArray<int>& a) { a.RemoveAt(0, -1); }},
      {"RemoveAt(1, max)", [](CArray<int>& a) { a.RemoveAt(1, kMax); }},
      {"SetAtGrow(-1)", [](CArray<int>& a) { a.SetAtGrow(-1, 9); }},
      {"Append(self)", [](CArray<int>& a) { a.Append(a); }},
  };
  for (const auto& [name, call] : calls) {
    SCOPED_TRACE(name);
    CArray<int> a = Make({1, 2, 3});
    EXPECT_THROW(call(a), CInvalidArgException);
    EXPECT_EQ(ToVector(a), (std::vector<int>{1, 2, 3}));
  }
}

TEST(ArrayGrowth, InsertAtPastTheEndFillsTheGapWithDefaults) {
  CArray<int> a = Make({1, 2});
  a.InsertAt(4, 9, 2);
  EXPECT_EQ(ToVector(a), (std::vector<int>{1, 2, 0, 0, 9, 9}));

  CStringArray s;
  s.Add("a");
  s.InsertAt(3, "z");
  ASSERT_EQ(s.GetSize(), 4);
  EXPECT_EQ(s[1], "");
  EXPECT_EQ(s[2], "");
  EXPECT_EQ(s[3], "z");
}

TEST(ArrayGrowth, InsertAtInsideShiftsTheTail) {
  CArray<int> a = Make({1, 2, 3});
  a.InsertAt(1, 7, 2);
  EXPECT_EQ(ToVector(a), (std::vector<int>{1, 7, 7, 2, 3}));
  a.InsertAt(5, 8);
  EXPECT_EQ(ToVector(a), (std::vector<int>{1, 7, 7, 2, 3, 8}));

  const CArray<int> other = Make({4, 5});
  a.InsertAt(0, &other);
  EXPECT_EQ(ToVector(a), (std::vector<int>{4, 5, 1, 7, 7, 2, 3, 8}));
  a.InsertAt(2, &a);
  EXPECT_EQ(ToVector(a), (std::vector<int>{4, 5, 4, 5, 1, 7, 7, 2, 3, 8, 1, 7, 7, 2, 3, 8}));

  a.RemoveAt(1, 14);
  EXPECT_EQ(ToVector(a), (std::vector<int>{4, 8}));
  a.RemoveAt(0, 0);
  EXPECT_EQ(ToVector(a), (std::vector<int>{4, 8}));
}

TEST(ArrayGrowth, AddReturnsNewIndexAppendReturnsOldSize) {
  CArray<int> a;
  EXPECT_EQ(a.Add(10), 0);
  EXPECT_EQ(a.Add(11), 1);
  EXPECT_EQ(a.Add(12), 2);
  const CArray<int> tail = Make({13, 14});
  EXPECT_EQ(a.Append(tail), 3);
  EXPECT_EQ(a.Append(CArray<int>()), 5);
  EXPECT_EQ(ToVector(a), (std::vector<int>{10, 11, 12, 13, 14}));
  EXPECT_EQ(a.GetUpperBound(), 4);
  EXPECT_EQ(CArray<int>().GetUpperBound(), -1);
}

TEST(ArrayGrowth, CopyOfItselfKeepsTheElements) {
  CArray<int> a = Make({1, 2, 3});
  a.Copy(a);
  EXPECT_EQ(ToVector(a), (std::vector<int>{1, 2, 3}));
  const CArray<int> other = Make({9});
  a.Copy(other);
  EXPECT_EQ(ToVector(a), (std::vector<int>{9}));
}

// Growing after a shrink must not bring back the old values left in the capacity.
TEST(ArrayGrowth, SetSizeValueInitialisesNewElements) {
  struct Plain {
    int i;
    double d;
    void* p;
  };
  CArray<Plain> a;
  a.SetSize(3);
  for (INT_PTR i = 0; i < 3; ++i) a[i] = Plain{7, 7.5, &a};
  a.SetSize(1);
  EXPECT_EQ(a.GetSize(), 1);
  a.SetSize(4, -1);
  ASSERT_EQ(a.GetSize(), 4);
  EXPECT_EQ(a[0].i, 7);
  for (INT_PTR i = 1; i < 4; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(a[i].i, 0);
    EXPECT_EQ(a[i].d, 0.0);
    EXPECT_EQ(a[i].p, nullptr);
  }

  CArray<int> b = Make({5, 6, 7});
  b.RemoveAt(1, 2);
  b.SetAtGrow(3, 9);
  EXPECT_EQ(ToVector(b), (std::vector<int>{5, 0, 0, 9}));
}

// An argument that is a reference into the array must be copied before the storage
// moves.
TEST(ArrayAliasing, ElementOfTheSameArrayWhileReallocating) {
  CArray<CString> a;
  a.Add(Long(0));
  for (int i = 1; i < 200; ++i) {
    a.Add(a[a.GetUpperBound()]);
    a[a.GetUpperBound()] += CString(std::to_string(i));
  }
  std::string expected = Long(0).str();
  for (int i = 1; i < 200; ++i) {
    expected += std::to_string(i);
    ASSERT_EQ(a[i].str(), expected) << i;
  }

  CArray<CString> b;
  b.Add(Long(1));
  for (int i = 0; i < 50; ++i) b.InsertAt(0, b[b.GetUpperBound()], 3);
  EXPECT_EQ(b.GetSize(), 151);
  for (const CString& s : b) EXPECT_EQ(s, Long(1));

  CArray<CString> c;
  c.Add(Long(2));
  c.SetAtGrow(1000, c[0]);
  EXPECT_EQ(c[1000], Long(2));
  EXPECT_EQ(c[999], "");
}

}  // namespace
