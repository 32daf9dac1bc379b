// CExPtrArray and the members every named array shares: pointer identity, who deletes
// what, deep copy against pointer identity, and equality through the elements' own
// operator!=. Elements here count their live instances so that a leak or a double
// delete shows as a wrong count (and under LeakSanitizer).
#include <corlith/values/2Index.h>
#include <corlith/values/4PointD.h>
#include <corlith/values/ExPtrArray.h>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

class Tracked : public CObject {
 public:
  static inline int alive = 0;
  explicit Tracked(int v = 0) : value(v) { ++alive; }
  Tracked(const Tracked& o) : CObject(o), value(o.value) { ++alive; }
  Tracked& operator=(const Tracked&) = default;
  ~Tracked() override { --alive; }
  virtual int operator==(const Tracked& o) const { return value == o.value; }
  virtual int operator!=(const Tracked& o) const { return !(*this == o); }
  void Serialize(CArchive& ar) override {
    if (ar.IsStoring()) {
      ar << value;
    } else {
      ar >> value;
    }
  }
  virtual Tracked* clone() const { return new Tracked(*this); }
  int value;
};

class TrackedArray : public corlith::OwningPtrArray<TrackedArray, Tracked> {};
using Bare = CExPtrArray<Tracked*, Tracked*>;

class ExPtrArrayTest : public testing::Test {
 protected:
  void SetUp() override { Tracked::alive = 0; }
  void TearDown() override { EXPECT_EQ(Tracked::alive, 0) << "leaked or double-deleted elements"; }
};

TEST_F(ExPtrArrayTest, BareTemplateDoesNotOwnNamedArrayDoes) {
  auto a = std::make_unique<Tracked>(1);
  auto b = std::make_unique<Tracked>(2);
  {
    Bare bare;
    bare.Add(a.get());
    bare.Add(b.get());
  }
  EXPECT_EQ(Tracked::alive, 2) << "destroying the bare template must leave elements alive";
  {
    TrackedArray named;
    named.Add(a.release());
    named.Add(b.release());
    named.Add(nullptr);
  }
  EXPECT_EQ(Tracked::alive, 0) << "a named array deletes its elements";
  TrackedArray init;
  init.Add(new Tracked(3));
  init.Init();
  EXPECT_EQ(init.GetSize(), 0);
  EXPECT_EQ(Tracked::alive, 0);
}

TEST_F(ExPtrArrayTest, AccessorsAreBoundedNeverThrow) {
  TrackedArray a;
  EXPECT_EQ(a.GetAt(0), nullptr);
  EXPECT_EQ(a.GetLastElement(), nullptr);
  EXPECT_EQ(a.GetLastIndex(), -1);
  EXPECT_EQ(a.RemoveLastElement(), nullptr);
  EXPECT_FALSE(a.DeleteLastElement());
  Tracked* p = new Tracked(1);
  a.Add(p);
  EXPECT_EQ(a.GetAt(-1), nullptr);
  EXPECT_EQ(a.GetAt(1), nullptr);
  EXPECT_EQ(a.GetAt(0), p);
  Tracked outside(9);
  a.SetAt(1, &outside);  // ignored: no growth
  a.SetAt(-1, &outside);
  EXPECT_EQ(a.GetSize(), 1);
  EXPECT_TRUE(a.IsValidIndex(0));
  EXPECT_FALSE(a.IsValidIndex(1));
  EXPECT_FALSE(a.IsValidIndex(-1));
  EXPECT_THROW(a[3], CInvalidArgException) << "the framework's element access still checks";
}

TEST_F(ExPtrArrayTest, LookupsUsePointerIdentityNotValue) {
  TrackedArray a;
  Tracked* p = new Tracked(5);
  Tracked* twin = new Tracked(5);
  EXPECT_EQ(a.Add_if_only_do_not_exists(p), 0);
  EXPECT_EQ(a.Add_if_only_do_not_exists(p), -1);
  EXPECT_EQ(a.GetSize(), 1);
  EXPECT_EQ(a.Add_if_only_do_not_exists(twin), 1) << "an equal-valued but distinct object is appended";
  EXPECT_EQ(a.FindIndex(twin), 1);
  Tracked stranger(5);
  EXPECT_EQ(a.FindIndex(&stranger), -1);
  EXPECT_FALSE(a.Exists(&stranger));
  EXPECT_FALSE(a.Remove(&stranger));
  EXPECT_TRUE(a.Remove(p));
  EXPECT_EQ(Tracked::alive, 3) << "Remove does not delete";
  delete p;
  EXPECT_TRUE(a.Delete(twin));
  EXPECT_FALSE(a.Delete(twin));
  EXPECT_TRUE(a.IsEmpty());
}

TEST_F(ExPtrArrayTest, RemoveNullAndDuplicatedKeepFirstOccurrencesInOrder) {
  Tracked x(1), y(2), z(3);
  Bare a;
  for (Tracked* p : {&x, static_cast<Tracked*>(nullptr), &y, &x, &z, &y, static_cast<Tracked*>(nullptr), &x})
    a.Add(p);
  a.RemoveDuplicatedElements();
  ASSERT_EQ(a.GetSize(), 4);
  EXPECT_EQ(a.GetAt(0), &x);
  EXPECT_EQ(a.GetAt(1), nullptr);
  EXPECT_EQ(a.GetAt(2), &y);
  EXPECT_EQ(a.GetAt(3), &z);
  a.RemoveNullElement();
  ASSERT_EQ(a.GetSize(), 3);
  EXPECT_EQ(a.GetAt(1), &y);
  a.Reverse();
  EXPECT_EQ(a.GetAt(0), &z);
  EXPECT_EQ(a.GetAt(2), &x);
  Bare other;
  other.Add(&x);
  other.Add(&x);
  a.Subtract(other);
  ASSERT_EQ(a.GetSize(), 2);
  EXPECT_FALSE(a.Exists(&x));
  Bare same;
  same.Add(&z);
  same.Add(&y);
  EXPECT_TRUE(a.IsElementEqual(same));
  same.SetAt(1, &x);
  EXPECT_FALSE(a.IsElementEqual(same));
  EXPECT_TRUE(Bare().IsElementEqual(Bare()));
}

// The one-pass forms give what the pairwise scans give: later slots of a pointer go
// first (RemoveDuplicatedElements), and a pointer held k times by the other array
// removes its first k slots here (Subtract).
TEST_F(ExPtrArrayTest, DuplicateRemovalAndSubtractMatchTheirScans) {
  Tracked pool[4];
  Tracked* p[4] = {&pool[0], &pool[1], &pool[2], &pool[3]};
  const struct {
    std::vector<int> here;  // indices into p; -1 is a null slot
    std::vector<int> other;
  } rows[] = {
      {{0, 1, 0, 2, 1, 0}, {0, 0}}, {{-1, 3, -1, 3}, {-1, 3, 3, 3}}, {{}, {1}}, {{2, 2, 2}, {}},
      {{0, 1, 2, 3}, {3, 2, 1, 0}}, {{1, 0, 1, 0}, {1, 2}},
  };
  auto fill = [&](Bare& a, const std::vector<int>& ids) {
    for (int id : ids) a.Add(id < 0 ? nullptr : p[id]);
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << "row of " << row.here.size());
    Bare once, scanned;
    fill(once, row.here);
    fill(scanned, row.here);
    once.RemoveDuplicatedElements();
    for (INT_PTR i = 0; i < scanned.GetSize(); ++i) {
      for (INT_PTR j = scanned.GetSize() - 1; j > i; --j) {
        if (scanned.GetAt(j) == scanned.GetAt(i)) scanned.RemoveAt(j);
      }
    }
    EXPECT_TRUE(once.IsElementEqual(scanned));

    Bare other, subtracted, removed;
    fill(other, row.other);
    fill(subtracted, row.here);
    fill(removed, row.here);
    subtracted.Subtract(other);
    for (Tracked* q : other) removed.Remove(q);
    EXPECT_TRUE(subtracted.IsElementEqual(removed));
  }
  Bare self;
  fill(self, {0, 1, 0});
  self.Subtract(self);
  EXPECT_TRUE(self.IsEmpty());
}

TEST_F(ExPtrArrayTest, MoveElementToAppendsTheRangeInOrder) {
  Tracked t[5] = {Tracked(0), Tracked(1), Tracked(2), Tracked(3), Tracked(4)};
  Bare src, dest;
  for (Tracked& e : t) src.Add(&e);
  Tracked d(9);
  dest.Add(&d);
  EXPECT_FALSE(src.MoveElementTo(dest, 3, 2));
  EXPECT_TRUE(src.MoveElementTo(dest, 2, 4));
  ASSERT_EQ(src.GetSize(), 2);
  ASSERT_EQ(dest.GetSize(), 4);
  EXPECT_EQ(dest.GetAt(0), &d);
  EXPECT_EQ(dest.GetAt(1), &t[2]);
  EXPECT_EQ(dest.GetAt(2), &t[3]);
  EXPECT_EQ(dest.GetAt(3), &t[4]);
  EXPECT_THROW(src.MoveElementTo(dest, 1, 5), CInvalidArgException);
  EXPECT_EQ(src.GetSize(), 2) << "nothing moved before the range was refused";
}

TEST_F(ExPtrArrayTest, DeleteAtDeletesAndRemovesEachSlot) {
  TrackedArray a;
  for (int i = 0; i < 5; ++i) a.Add(new Tracked(i));
  a.DeleteAt(1, 2);
  ASSERT_EQ(a.GetSize(), 3);
  EXPECT_EQ(Tracked::alive, 3);
  EXPECT_EQ(a.GetAt(0)->value, 0);
  EXPECT_EQ(a.GetAt(1)->value, 3);
  EXPECT_THROW(a.DeleteAt(2, 2), CInvalidArgException);
  EXPECT_EQ(Tracked::alive, 3) << "a range past the end deletes nothing";
  EXPECT_TRUE(a.DeleteLastElement());
  EXPECT_EQ(Tracked::alive, 2);
  std::unique_ptr<Tracked> detached(a.RemoveLastElement());
  EXPECT_EQ(detached->value, 3);
  EXPECT_EQ(a.GetSize(), 1);
}

TEST_F(ExPtrArrayTest, AssignmentDeepCopiesAndEqualityComparesValues) {
  TrackedArray a;
  a.Add(new Tracked(1));
  a.Add(new Tracked(2));
  TrackedArray b(a);
  EXPECT_EQ(Tracked::alive, 4);
  EXPECT_NE(a.GetAt(0), b.GetAt(0)) << "copies, not shared pointers";
  EXPECT_TRUE(a == b);
  EXPECT_FALSE(a.IsElementEqual(b));
  b.GetAt(1)->value = 7;
  EXPECT_TRUE(a != b);
  EXPECT_EQ(a.GetAt(1)->value, 2);
  b = b;
  EXPECT_EQ(b.GetSize(), 2);
  b = a;
  EXPECT_EQ(Tracked::alive, 4) << "assignment deleted the old elements";
  EXPECT_TRUE(a == b);
  b.Add(new Tracked(3));
  EXPECT_FALSE(a == b) << "different counts";
  std::unique_ptr<TrackedArray> c(a.clone());
  EXPECT_TRUE(*c == a);
  EXPECT_NE(c->GetAt(0), a.GetAt(0));
}

TEST_F(ExPtrArrayTest, C2IndexArrayFindsInEitherOrderOnlyWhenAsked) {
  C2IndexArray a;
  EXPECT_EQ(a.FindElement(3, 5, 1), -1);
  a.Add(new C2Index(1, 2));
  a.Add(new C2Index(5, 3));
  EXPECT_EQ(a.FindElement(3, 5, 1), 1);
  EXPECT_EQ(a.FindElement(3, 5, 0), -1);
  EXPECT_EQ(a.FindElement(5, 3, 0), 1);
  C2IndexArray b(a);
  EXPECT_TRUE(a == b);
  b.GetAt(0)->SetIndex2(9);
  EXPECT_FALSE(a == b);
}

}  // namespace

// The framework array's element-wise copies would leave two owners of each element; an
// owning array refuses them at compile time, while the bare, non-owning one keeps them.
template <class A>
concept CopiesElementsShallowly = requires(A& a, const A& b) {
  a.Copy(b);
  a.Append(b);
  a.InsertAt(0, &b);
};
static_assert(!CopiesElementsShallowly<C4PointDArray>);
static_assert(CopiesElementsShallowly<CExPtrArray<C4PointD*, C4PointD*>>);
static_assert(requires(C4PointDArray & a, C4PointD* p) { a.InsertAt(0, p); });
