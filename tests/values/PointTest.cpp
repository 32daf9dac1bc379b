// The point family: rotation with its two constants and the integer truncation, the
// asymmetric mirrors, Translate against MoveRotate, the group operations and the
// sorting comparators.
#include "TestSupport.h"

#include <corlith/values/Values.h>

#include <gtest/gtest.h>

#include <memory>

namespace {

using corlith::test::ToleranceGuard;

TEST(PointD, RotationTranslationAndMirrors) {
  CPointD p(1, 0);
  p.Rotate(90);
  EXPECT_NEAR(p.x, 0, 1e-15);
  EXPECT_EQ(p.y, 1);
  CPointD t(1, 1);
  t.Translate(1, 2, 0);
  EXPECT_EQ(t.x, 2);
  EXPECT_EQ(t.y, 3);
  CPointD m(1, 1);
  m.MoveRotate(1, 2, 0);
  EXPECT_EQ(m.x, 0);
  EXPECT_EQ(m.y, -1) << "MoveRotate subtracts";
  CPointD r(1, 0);
  r.Translate(1, 0, 180);
  EXPECT_NEAR(r.x, 0, 1e-15);

  struct Row {
    const char* op;
    int axis;
    double x, y;
  } rows[] = {{"Mirror", 0, 2, -3},       {"Mirror", 1, -2, 3},       {"Mirror", 2, 2, 3},
              {"MirrorOfAxis", 0, -2, 3}, {"MirrorOfAxis", 1, 2, -3}, {"MirrorOfAxis", 5, 2, 3}};
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << row.op << "(" << row.axis << ")");
    CPointD q(2, 3);
    std::string(row.op) == "Mirror" ? q.Mirror(row.axis) : q.MirrorOfAxis(row.axis);
    EXPECT_EQ(q.x, row.x);
    EXPECT_EQ(q.y, row.y);
  }
  CPointD v(2, 3);
  v.vReverse();
  EXPECT_EQ(v.x, -2);
  v.SwapXY();
  EXPECT_EQ(v.x, 3);
  EXPECT_EQ(v.y, -2);
  EXPECT_TRUE(CPointD(1, 1).PtInRect(CPointD(2, 0), CPointD(1, 1))) << "edges included, corners in any order";
  EXPECT_FALSE(CPointD(1, 1).PtInRect(CPointD(2, 0), CPointD(1.5, 3)));
}

TEST(PointN, RotationUsesTheShortPiAndTruncates) {
  struct Row {
    int x, y;
    double degrees;
    int ex, ey;
  } rows[] = {
      {10, 0, 90, 0, 9}, {10, 0, 45, 7, 7}, {10, 0, 180, -9, 0}, {-10, 0, 90, 0, -9}, {3, 4, 0, 3, 4}};
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << row.x << "," << row.y << " by " << row.degrees);
    CPointN p(row.x, row.y);
    p.Rotate(row.degrees);
    EXPECT_EQ(p.x, row.ex);
    EXPECT_EQ(p.y, row.ey);
  }
  CPointN m(10, 0);
  m.MoveRotate(1, 2, 90);
  EXPECT_EQ(m.x, -1);
  EXPECT_EQ(m.y, 7);
  CPointN huge(2000000000, 2000000000);
  huge.Rotate(45);  // beyond the int range: clamped, not undefined
  EXPECT_EQ(huge.y, 2147483647);
}

TEST(Point3D, ComparesExactly) {
  EXPECT_FALSE(CPoint3D(1, 2, 3) == CPoint3D(1, 2, 3.0000001));
  EXPECT_TRUE(CPoint3D(1, 2, 3) == CPoint3D(1, 2, 3));
  CArrayPoint3D a;
  a.Add(new CPoint3D(1, 2, 3));
  a.UnitConvert(2);
  EXPECT_EQ(a.GetAt(0)->z, 6);
}

TEST(PointGroups, EqualityFollowsTheSharedTolerance) {
  ToleranceGuard guard;
  CUnitTolerance::SetTolerancewithValue(0.0001);
  C4PointD a(CPointD(0, 0), CPointD(0, 1), CPointD(1, 1), CPointD(1, 0));
  C4PointD b(a);
  b.pt3.x += 0.00005;
  EXPECT_TRUE(a == b);
  CUnitTolerance::SetTolerancewithValue(0.00001);
  EXPECT_FALSE(a == b);
  C4PointD collapsed(CPointD(1, 1), CPointD(1, 1.000001), CPointD(1, 1), CPointD(1, 1));
  EXPECT_TRUE(collapsed.IsNULL());
  EXPECT_FALSE(a.IsNULL());
  C2PointD s1(CPointD(0, 0), CPointD(3, 4));
  C2PointD s2(CPointD(0, 0), CPointD(3, 4.001));
  EXPECT_TRUE(s1 != s2);
  EXPECT_EQ(s1.GetSquareDistance(), 25);
  EXPECT_EQ(s1.GetDiatance(), 5);
  C2PointDArray segs;
  EXPECT_EQ(segs.SumElementDistances(), 0);
  segs.Add(new C2PointD(s1));
  segs.Add(new C2PointD(CPointD(1, 1), CPointD(1, 2)));
  EXPECT_EQ(segs.SumElementDistances(), 6);
  EXPECT_EQ(segs.SumElementSquareDistances(), 26);
}

TEST(PointGroups, AliasedNamesStayWithTheirObjectAfterCopy) {
  C4PointD a(CPointD(1, 0), CPointD(2, 0), CPointD(3, 0), CPointD(4, 0));
  C4PointD b;
  b = a;
  b.pt1.x = 9;
  EXPECT_EQ(a.pt1.x, 1) << "pt1 of a copy must name the copy's storage";
  EXPECT_EQ(b.Get4Points()[0].x, 9);
  std::unique_ptr<C4PointD> c(a.clone());
  c->pt4.y = 5;
  EXPECT_EQ(a.GetPt4().y, 0);
  EXPECT_EQ(c->Get4Points()[3].y, 5);
}

TEST(PointGroups, ClosestIndexBoundsAndTransforms) {
  C5PointD five(CPointD(0, 0), CPointD(2, 0), CPointD(-2, 0), CPointD(0, 5), CPointD(1, -3));
  EXPECT_EQ(five.GetClosestPtIndexFrom(CPointD(1, 0)), 0) << "a tie keeps the earlier index";
  EXPECT_EQ(five.GetClosestPtIndexFrom(CPointD(-1.5, 0)), 2);
  const CRectD box = five.GetRectD();
  EXPECT_TRUE(box == CRectD(-2, 5, 4, 8));

  C4PointD q;
  q.SetData(CRectD(0, 10, 4, 2));
  EXPECT_TRUE(q.pt1 == CPointD(0, 10));
  EXPECT_TRUE(q.pt2 == CPointD(0, 8));
  EXPECT_TRUE(q.pt3 == CPointD(4, 8));
  EXPECT_TRUE(q.pt4 == CPointD(4, 10));
  C4PointDArray quads;
  quads.Add(new C4PointD(q));
  quads.Translate(1, 1, 90);
  EXPECT_NEAR(quads.GetAt(0)->pt1.x, -9, 1e-12) << "rotated about the origin, then moved";
  EXPECT_NEAR(quads.GetAt(0)->pt1.y, 1, 1e-12);
  quads.Mirror(0);
  EXPECT_NEAR(quads.GetAt(0)->pt1.y, -1, 1e-12);
  quads.MirrorOfAxis(0);
  EXPECT_NEAR(quads.GetAt(0)->pt1.x, 9, 1e-12);
}

TEST(ArrayPointD, SortByAxisAndDirection) {
  auto make = [] {
    CArrayPointD a;
    for (auto [x, y] : {std::pair{2.0, 1.0}, {1.0, 3.0}, {2.0, 0.0}, {0.0, 2.0}}) {
      CPointD p(x, y);
      a.Add(p);
    }
    return a;
  };
  struct Row {
    int ascending, axis;
    double xs[4];
  } rows[] = {{1, 0, {0, 1, 2, 2}},
              {0, 0, {2, 2, 1, 0}},
              {1, 1, {2, 2, 0, 1}},
              {0, 1, {1, 0, 2, 2}},
              {1, 2, {2, 1, 2, 0}}};
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << "ascending " << row.ascending << " axis " << row.axis);
    CArrayPointD a = make();
    a.Sort(row.ascending, row.axis);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(a[i].x, row.xs[i]) << i;
  }
  CArrayPointD a = make();
  a.Sort(1, 0);
  EXPECT_EQ(a[2].y, 0) << "equal x ordered by y";
  EXPECT_TRUE(a.IsExist(1, 3));
  EXPECT_FALSE(a.IsExist(1, 3.0000001)) << "IsExist is exact";
  const CPointD lo(0, 0), hi(0, 1);
  EXPECT_EQ(CArrayPointD::CompareForDescendingY(&lo, &hi), 1);
  EXPECT_EQ(CArrayPointD::CompareForAscendingX(&lo, &lo), 0);
}

}  // namespace
