// CRectD: the two SetData orders, strict against inclusive containment, the overlap
// tests reproduced one by one, the side table, and the size operations that take a
// percentage against those that take a fraction.
#include <corlith/values/RectD.h>

#include <gtest/gtest.h>

namespace {

TEST(RectD, EdgesAndContainment) {
  const CRectD r(0, 10, 4, 2);
  EXPECT_EQ(r.Right(), 4);
  EXPECT_EQ(r.Bottom(), 8);
  EXPECT_TRUE(r.CenterPoint() == CPointD(2, 9));
  EXPECT_FALSE(r.PtInRect(0, 9));
  EXPECT_TRUE(r.PtOnRect(0, 9));
  EXPECT_TRUE(r.PtInRect(CPointD(1, 9)));
  EXPECT_FALSE(r.PtOnRect(4.0001, 9));
  EXPECT_FALSE(r == CRectD(1e-12, 10, 4, 2)) << "rectangles compare exactly";
  CRectD a, b;
  a.SetData(0, 8, 4, 10);
  b.SetData2(0, 10, 4, 8);
  EXPECT_TRUE(a == r);
  EXPECT_TRUE(b == r);
  CRectD c;
  c.SetData(CPointD(4, 8), CPointD(0, 10));
  EXPECT_TRUE(c == r);
  EXPECT_EQ(CRectD(0, 0, -2, 3).GetArea(), -6);
  EXPECT_TRUE(CRectD(0, 0, 0, 3).IsRectEmpty());
  EXPECT_TRUE(r.IsInner(CRectD(1, 9.5, 1, 1)));
  EXPECT_FALSE(r.IsInner(CRectD(0, 9.5, 1, 1))) << "a corner on the edge is not inside";
}

TEST(RectD, InflateTakesPercentDeflateTakesFraction) {
  CRectD r(0, 10, 4, 2);
  r.Inflate(200.0);
  EXPECT_EQ(r.GetWidth(), 8);
  EXPECT_EQ(r.GetHeight(), 4);
  EXPECT_TRUE(r.CenterPoint() == CPointD(2, 9));
  CRectD d(0, 10, 4, 2);
  d.DeflateRect(0.5);
  EXPECT_EQ(d.GetWidth(), 2);
  EXPECT_EQ(d.GetHeight(), 1);
  EXPECT_TRUE(d.CenterPoint() == CPointD(2, 9));
  CRectD i(0, 10, 4, 2);
  i.Inflate(1, 2);
  EXPECT_TRUE(i == CRectD(-1, 12, 6, 6));
  i.ShiftArea(CPointD(0, 0));
  EXPECT_TRUE(i.CenterPoint() == CPointD(0, 0));
}

TEST(RectD, ConvertToCRectTruncatesTowardZero) {
  const CRect c = CRectD(0.000019, 10, 4, 12.5).ConvertToCRect();
  EXPECT_EQ(c.left, 1);
  EXPECT_EQ(c.top, 1000000);
  EXPECT_EQ(c.right, 400001);
  EXPECT_EQ(c.bottom, -250000);
  EXPECT_EQ(CRectD(-0.000019, 0, 0, 0).ConvertToCRect().left, -1);
  EXPECT_EQ(CRectD(1e300, 0, 0, 0).ConvertToCRect().left, 2147483647) << "clamped, not undefined";
}

TEST(RectD, IntersectionKeepsEmptyResultsUnionKeepsEmptyInputs) {
  CRectD out;
  EXPECT_EQ(out.IntersectionRect(CRectD(0, 2, 1, 1), CRectD(5, 2, 1, 1)), 0);
  EXPECT_LT(out.GetWidth(), 0);
  EXPECT_NE(out.IntersectionRect(CRectD(0, 2, 2, 2), CRectD(1, 3, 2, 2)), 0);
  EXPECT_TRUE(out == CRectD(1, 2, 1, 1));
  EXPECT_NE(out.UnionRect(CRectD(), CRectD(5, 7, 1, 1)), 0);
  EXPECT_TRUE(out == CRectD(0, 7, 6, 7)) << "an all-zero input pulls the union to the origin";
  CArrayRectD rects;
  EXPECT_TRUE(rects.GetMaxMinRect() == CRectD());
  rects.Add(new CRectD(3, 3, -1, 0));
  EXPECT_TRUE(rects.GetMaxMinRect() == CRectD(3, 3, -1, 0)) << "one rectangle, even empty, is returned as is";
  rects.Add(new CRectD(0, 1, 1, 1));
  EXPECT_TRUE(rects.GetMaxMinRect() == CRectD(0, 3, 2, 3)) << "right edge of the negative-width one is 2";
}

TEST(RectD, OverlapTestsInTheirOrder) {
  const CRectD base(0, 10, 10, 10);  // x 0..10, y 0..10
  struct Row {
    const char* name;
    CRectD other;
    bool expected;
  } rows[] = {
      {"corner of other inside", CRectD(5, 15, 10, 10), true},
      {"other contains this", CRectD(-1, 11, 12, 12), true},
      {"cross: tall thin through the middle", CRectD(4, 12, 2, 14), true},
      {"cross: wide flat through the middle", CRectD(-2, 6, 14, 2), true},
      {"shares only its top edge", CRectD(0, 20, 10, 10), false},
      {"side by side on a vertical edge: the cross test counts it", CRectD(10, 10, 5, 10), true},
      {"apart", CRectD(20, 10, 1, 1), false},
      {"same rectangle: no corner strictly inside, cross test catches it", CRectD(0, 10, 10, 10), true},
      {"flat strip on the bottom edge", CRectD(2, 0, 3, 0), false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(base.IsOverlappedWith(row.other), row.expected);
  }
}

TEST(RectD, SideTableAndNearBand) {
  const CRectD r(0, 10, 10, 10);
  struct Row {
    double x, y;
    int side;
  } rows[] = {{5, 5, 0},  {10, 5, 0},  {5, 11, 1}, {-1, 11, 2}, {-1, 5, 3}, {-1, -1, 4},
              {5, -1, 5}, {11, -1, 6}, {11, 5, 7}, {11, 11, 8}, {0, 10, 0}, {-1, 10, 3}};
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << "(" << row.x << ", " << row.y << ")");
    EXPECT_EQ(r.DetermineRectSideOf(CPointD(row.x, row.y)), row.side);
  }
  EXPECT_TRUE(r.IsNearPoint(0, 5, 0.001));
  EXPECT_TRUE(r.IsNearPoint(10, 10, 2));
  EXPECT_FALSE(r.IsNearPoint(5, 5, 2));
  EXPECT_FALSE(r.IsNearPoint(-2, 5, 2));
  EXPECT_TRUE(r.IsToCheck(CRectD(11, 10, 1, 1), 1)) << "touching within the margin";
  EXPECT_FALSE(r.IsToCheck(CRectD(11.5, 10, 1, 1), 1));
}

}  // namespace
