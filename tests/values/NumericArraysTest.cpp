// The numeric arrays' set operations, extremes and sentinels, the comparators that
// overflow on purpose, CDWordArrayEx's prefix comparison and the set and nestings built
// on CDWordArray; and their loads, which believe a count only as far as the data goes.
#include "TestSupport.h"

#include <corlith/values/Values.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <new>
#include <random>
#include <string>
#include <unordered_set>
#include <vector>

// The largest single allocation made on this thread while a probe is active: shows
// that a count read from an archive did not size memory before the data was there.
// Under the address sanitizer its allocator hook sees every allocation; otherwise the
// global allocation functions are replaced.
#if defined(__SANITIZE_ADDRESS__)
#define CORLITH_TEST_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define CORLITH_TEST_ASAN 1
#endif
#endif

namespace {
thread_local bool t_probing = false;
thread_local std::size_t t_largest = 0;

void NoteAllocation(std::size_t n) {
  if (t_probing && n > t_largest) t_largest = n;
}
}  // namespace

#ifdef CORLITH_TEST_ASAN
// From the sanitizer runtime's allocator interface (GCC does not install its header).
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*malloc_hook)(const volatile void*,
                                                                             std::size_t),
                                                         void (*free_hook)(const volatile void*));

namespace {
void OnMalloc(const volatile void*, std::size_t n) { NoteAllocation(n); }
void OnFree(const volatile void*) {}
const int g_hooksInstalled = __sanitizer_install_malloc_and_free_hooks(OnMalloc, OnFree);
}  // namespace
#else
// GCC inlines these into callers and then takes free() on memory from operator new for
// a mismatch; here both sides are ours.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void* operator new(std::size_t n) {
  NoteAllocation(n);
  if (void* p = std::malloc(n == 0 ? 1 : n)) return p;
  throw std::bad_alloc();
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
#pragma GCC diagnostic pop
#endif

namespace {

using namespace corlith::test;

class LargestAllocation {
 public:
  LargestAllocation() {
#ifdef CORLITH_TEST_ASAN
    EXPECT_NE(g_hooksInstalled, 0) << "the sanitizer refused the allocation hooks";
#endif
    t_largest = 0;
    t_probing = true;
  }
  ~LargestAllocation() { t_probing = false; }
  LargestAllocation(const LargestAllocation&) = delete;
  LargestAllocation& operator=(const LargestAllocation&) = delete;
  std::size_t Largest() const { return t_largest; }
};

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

TEST(NumericArrays, RemoveDuplicateElementsKeepsFirstOccurrencesInOrder) {
  struct Row {
    const char* what;
    std::vector<int> input;
    std::vector<int> kept;
  };
  const Row rows[] = {
      {"empty", {}, {}},
      {"no duplicates", {5, -1, 0}, {5, -1, 0}},
      {"later copies go, wherever they are", {2, 2, 1, 2, 3, 1}, {2, 1, 3}},
      {"extremes", {INT_MIN, INT_MAX, 0, INT_MIN, -0, INT_MAX}, {INT_MIN, INT_MAX, 0}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    CArrayN a;
    for (int v : row.input) a.Add(v);
    a.RemoveDuplicateElements();
    EXPECT_EQ(Items(a), row.kept);
  }
  // Many values with many repeats, against the first occurrences found by hand.
  std::mt19937 random(7);
  CArrayN big;
  std::vector<int> expected;
  std::unordered_set<int> seen;
  for (int i = 0; i < 20000; ++i) {
    const int v = static_cast<int>(random() % 5000) - 2500;
    big.Add(v);
    if (seen.insert(v).second) expected.push_back(v);
  }
  big.RemoveDuplicateElements();
  EXPECT_EQ(Items(big), expected);
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

// The sorts are merge sorts: values that compare equal keep their order, which shows
// with 0.0 and -0.0, and with points equal on both coordinates that way. Enough
// elements that runs are merged, not only insertion-sorted.
TEST(NumericArrays, SortsKeepTheOrderOfEqualValues) {
  std::vector<bool> zeroSigns;  // the signs of the zeros, in input order
  CArrayD d;
  CArrayPointD points;
  for (int i = 0; i < 200; ++i) {
    const double v = i % 3 == 0 ? ((i / 3) % 2 ? -0.0 : 0.0) : (i * 7919 % 97) - 48.5;
    if (v == 0.0) zeroSigns.push_back(std::signbit(v));
    d.Add(v);
    CPointD p(v, 1);
    points.Add(p);
  }
  for (int ascending : {1, 0}) {
    SCOPED_TRACE(ascending);
    CArrayD sorted = d;
    sorted.Sort(ascending);
    std::vector<bool> signs;
    for (double v : sorted) {
      if (v == 0.0) signs.push_back(std::signbit(v));
    }
    EXPECT_EQ(signs, zeroSigns);

    CArrayPointD sortedPoints = points;
    sortedPoints.Sort(ascending, 0);
    signs.clear();
    for (const CPointD& p : sortedPoints) {
      if (p.x == 0.0) signs.push_back(std::signbit(p.x));
    }
    EXPECT_EQ(signs, zeroSigns);
  }
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

// ---------------------------------------------------------------------------
// Loads of the five numeric arrays

// A memory file that cannot tell its length, as a pipe cannot: a load then believes a
// count only as far as the archive's buffer goes, and grows step by step.
class LengthlessFile : public CMemFile {
 public:
  using CMemFile::CMemFile;
  ULONGLONG GetLength() const override { AfxThrowFileException(CFileException::genericException); }
};

// The framework's count form (CArchive::WriteCount).
Bytes FrameworkCount(std::uint64_t count) {
  if (count < 0xFFFF) return {static_cast<BYTE>(count), static_cast<BYTE>(count >> 8)};
  Bytes b{0xFF, 0xFF};
  if (count < 0xFFFFFFFF) {
    Put32(b, static_cast<std::uint32_t>(count));
  } else {
    Put32(b, 0xFFFFFFFF);
    Put64(b, count);
  }
  return b;
}
// CNArrayL's older form: version word 1 and a 4-byte count.
Bytes NArrayLCount(std::uint64_t count) {
  Bytes b;
  Put32(b, 1);
  Put32(b, static_cast<std::uint32_t>(count));
  return b;
}

template <class ELEM>
Bytes Elements(const std::vector<ELEM>& values) {
  Bytes b(values.size() * sizeof(ELEM));
  if (!b.empty()) std::memcpy(b.data(), values.data(), b.size());
  return b;
}

template <class ELEM>
std::vector<ELEM> Values(std::size_t n) {
  std::vector<ELEM> v(n);
  for (std::size_t i = 0; i < n; ++i) v[i] = static_cast<ELEM>(static_cast<int>(i) * 3 - 7);
  return v;
}

struct LoadOutcome {
  int cause = -1;  // of the CArchiveException thrown, -1 for none
  std::size_t consumed = 0;
  std::size_t largest = 0;
};

template <class ARRAY, class FILE>
LoadOutcome LoadInto(ARRAY& array, Bytes bytes) {
  FILE file(bytes.data(), static_cast<UINT>(bytes.size()));
  CArchive ar(&file, CArchive::load, 128);
  LoadOutcome outcome;
  LargestAllocation largest;
  try {
    array.Serialize(ar);
  } catch (const CArchiveException& e) {
    outcome.cause = e.m_cause;
  }
  outcome.largest = largest.Largest();
  outcome.consumed = static_cast<std::size_t>(ar.GetPosition());
  return outcome;
}

// A hostile count may cost a bounded step of memory, never the claimed size.
constexpr std::size_t kAllocationBound = std::size_t{4} << 20;

// Loads `n` elements through both kinds of memory file and checks every element; then
// a count far beyond the data: end of file, the elements read completely kept, every
// byte present consumed (as reading element by element would), bounded memory.
template <class ARRAY, class ELEM>
void CheckCountedLoads(const char* name, Bytes (*prefix)(std::uint64_t), std::uint64_t hostileCount) {
  SCOPED_TRACE(name);
  const std::size_t n = 100000;  // several 64 KiB steps when the length is unknown
  const std::vector<ELEM> values = Values<ELEM>(n);
  const Bytes honest = Cat({prefix(n), Elements(values)});
  for (bool lengthless : {false, true}) {
    SCOPED_TRACE(lengthless ? "file without a length" : "memory file");
    ARRAY loaded;
    loaded.Add(ELEM{42});  // loading replaces what was there
    const LoadOutcome outcome = lengthless ? LoadInto<ARRAY, LengthlessFile>(loaded, honest)
                                           : LoadInto<ARRAY, CMemFile>(loaded, honest);
    EXPECT_EQ(outcome.cause, -1);
    EXPECT_EQ(outcome.consumed, honest.size());
    ASSERT_EQ(loaded.GetSize(), static_cast<INT_PTR>(n));
    EXPECT_TRUE(std::equal(values.begin(), values.end(), loaded.GetData()));
  }

  Bytes hostile = Cat({prefix(hostileCount), Elements(Values<ELEM>(3))});
  hostile.insert(hostile.end(), sizeof(ELEM) / 2, 0xAB);  // half an element more
  for (bool lengthless : {false, true}) {
    SCOPED_TRACE(lengthless ? "hostile count, file without a length" : "hostile count, memory file");
    ARRAY loaded;
    const LoadOutcome outcome = lengthless ? LoadInto<ARRAY, LengthlessFile>(loaded, hostile)
                                           : LoadInto<ARRAY, CMemFile>(loaded, hostile);
    EXPECT_EQ(outcome.cause, CArchiveException::endOfFile);
    EXPECT_EQ(outcome.consumed, hostile.size());
    EXPECT_LT(outcome.largest, kAllocationBound);
    ASSERT_EQ(loaded.GetSize(), 3);
    EXPECT_EQ(loaded[2], static_cast<ELEM>(-1));
  }
}

TEST(NumericArrayLoads, CountIsBelievedOnlyAsFarAsTheDataGoes) {
  CheckCountedLoads<CArrayD, double>("CArrayD", Header, std::uint64_t{1} << 40);
  CheckCountedLoads<CArrayN, int>("CArrayN", Header, std::uint64_t{1} << 40);
  CheckCountedLoads<CArrayB, BOOL>("CArrayB", Header, 0x7FFFFFFFFFFFFFFFull);
  CheckCountedLoads<CArrayF, float>("CArrayF", FrameworkCount, std::uint64_t{1} << 40);
  CheckCountedLoads<CNArrayL, int>("CNArrayL", NArrayLCount, 0x7FFFFFFF);
  CheckCountedLoads<CDWordArray, DWORD>("CDWordArray", FrameworkCount, 0xFFFFFFFE);
}

}  // namespace
