// corlith::HashIndex against the scans it replaces: whatever changes the array, a
// look-up answers what a scan from the front answers, also when every key collides.
#include <corlith/values/DWordPair.h>
#include <corlith/values/HashIndex.h>

#include <gtest/gtest.h>

#include <random>

namespace {

// Every key in one bucket: probing, growth and the first-index rule carry it all.
struct CollidingTraits {
  static std::size_t Hash(int) { return 7; }
  static bool Equal(int element, int key) { return element == key; }
};

INT_PTR Scan(const CArray<int, int>& a, int key) {
  for (INT_PTR i = 0; i < a.GetSize(); ++i) {
    if (a[i] == key) return i;
  }
  return -1;
}

TEST(HashIndex, AnswersTheScanThroughRandomChanges) {
  std::mt19937 rng(11);
  CArray<int, int> array;
  corlith::HashIndex<CArray<int, int>, CollidingTraits> index;
  for (int step = 0; step < 3000; ++step) {
    const int value = static_cast<int>(rng() % 40);
    switch (rng() % 6) {
      case 0:
      case 1:  // append as a set does: look up, append, tell the index
        if (index.Find(array, value) == -1) index.Appended(array, array.Add(value));
        break;
      case 2:  // append behind the index's back
        array.Add(value);
        break;
      case 3:
        if (!array.IsEmpty()) array[static_cast<INT_PTR>(rng() % array.GetSize())] = value;
        break;
      case 4:
        if (!array.IsEmpty()) array.RemoveAt(static_cast<INT_PTR>(rng() % array.GetSize()));
        break;
      default:
        if (rng() % 20 == 0) array.RemoveAll();
        break;
    }
    const int probe = static_cast<int>(rng() % 40);
    ASSERT_EQ(index.Find(array, probe), Scan(array, probe)) << "step " << step;
  }
}

TEST(HashIndex, CopiesAndMovesNeverShowAStaleIndex) {
  CArray<int, int> a;
  corlith::HashIndex<CArray<int, int>, CollidingTraits> index;
  for (int v : {1, 2, 3}) index.Appended(a, a.Add(v));
  EXPECT_EQ(index.Find(a, 3), 2);
  CArray<int, int> b;
  b.Add(9);
  a = b;  // new contents under the same index
  EXPECT_EQ(index.Find(a, 3), -1);
  EXPECT_EQ(index.Find(a, 9), 0);
  CArray<int, int> c(std::move(a));
  EXPECT_EQ(index.Find(a, 9), Scan(a, 9));  // the moved-from array is looked at again
}

TEST(DWordPairSet, EitherOrderIsOnePairWhateverChangesTheSet) {
  CDWordPairSet set;
  EXPECT_EQ(set.Add(CDWordPair(1, 2)), TRUE);
  EXPECT_EQ(set.Add(CDWordPair(2, 1)), FALSE);
  EXPECT_EQ(set.Add(CDWordPair(2, 3)), TRUE);
  EXPECT_EQ(set.Find(CDWordPair(3, 2)), 1);
  set[0].dw2 = 5;  // changed in place through the array
  EXPECT_EQ(set.Find(CDWordPair(2, 1)), -1);
  EXPECT_EQ(set.Find(CDWordPair(5, 1)), 0);
  CDWordPair again(1, 2);
  set.InsertAt(0, again);
  EXPECT_EQ(set.Find(CDWordPair(2, 1)), 0);
  EXPECT_EQ(set.Find(CDWordPair(3, 2)), 2);
  EXPECT_EQ(set.Add(CDWordPair(1, 5)), FALSE);
}

}  // namespace
