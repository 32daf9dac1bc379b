// The two float styles side by side: equality bounds, edge rules, the crossing test of
// every rectangle kind, the kept asymmetries (CFRect::operator== normalising its left
// operand, CRectF's exchanged intersection, the vertical-only square, Mirror's axis
// numbers) and the circle's band of width 2w; conversions to and from the double classes.
#include <corlith/values/Values.h>

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(FloatPoints, EqualityBoundIsInclusiveForCFPointAndExactForCPointF) {
  struct Row {
    float dx;
    bool fpointEqual;
    bool pointfEqual;
  };
  for (const Row& row : {Row{0.0f, true, true}, Row{0.0001f, true, false}, Row{0.00011f, false, false},
                         Row{-0.0001f, true, false}}) {
    SCOPED_TRACE(std::to_string(row.dx));
    EXPECT_EQ(CFPoint(0.0f, 0.0f) == CFPoint(row.dx, 0.0f), row.fpointEqual);
    EXPECT_EQ(CFPoint(1.0f, 0.0f) == CFPoint(1.0f, row.dx), row.fpointEqual);
    EXPECT_EQ(CPointF(0.0f, 0.0f) == CPointF(row.dx, 0.0f), row.pointfEqual);
  }
  // Equality of pairs follows the points.
  EXPECT_TRUE(C2FPoints(CFPoint(0.0f, 0.0f), CFPoint(1.0f, 1.0f)) ==
              C2FPoints(CFPoint(0.0001f, 0.0f), CFPoint(1.0f, 1.0f) + CFPoint(0.0f, 0.00005f)));
}

TEST(FloatPoints, RotationInPlaceAndConversions) {
  CFPoint p(10.0f, 0.0f);
  const CFPoint copy = p.Rotation(90.0f);
  EXPECT_NEAR(p.x, 0.0, 1e-4);
  EXPECT_NEAR(p.y, 10.0, 1e-4);
  EXPECT_EQ(copy.x, p.x);

  CPointD d(1.25, -3.5);
  CPointF f;
  f = d;
  EXPECT_EQ(f.x, 1.25f);
  CPointD back(f);
  EXPECT_EQ(back.y, -3.5);
  CPointD assigned;
  assigned = CPointF(2.0f, 4.0f);
  EXPECT_EQ(assigned.x, 2.0);
  f.UnitChange(2.0);
  EXPECT_EQ(f.y, -7.0f);
}

TEST(FloatRects, PtInRectInclusiveForCFRectStrictForCRectF) {
  const CFRect corner(0, 2, 4, 0);
  const CRectF anchor(0, 2, 4, 2);
  const CRectFL anchorL(0, 2, 4, 2);
  struct Row {
    float x, y;
    bool inside;  // strictly inside
  };
  for (const Row& row :
       {Row{4, 2, false}, Row{0, 0, false}, Row{2, 1, true}, Row{4, 1, false}, Row{5, 1, false}}) {
    SCOPED_TRACE(std::to_string(row.x) + "," + std::to_string(row.y));
    const bool onOrIn = row.x >= 0 && row.x <= 4 && row.y >= 0 && row.y <= 2;
    EXPECT_EQ(corner.PtInRect(row.x, row.y) != 0, onOrIn);
    EXPECT_EQ(anchor.PtInRect(row.x, row.y) != 0, row.inside);
    EXPECT_EQ(anchorL.PtInRect(row.x, row.y) != 0, row.inside);
  }
}

TEST(FloatRects, CrossingRectanglesOverlapExceptForCFRect) {
  // A horizontal bar and a vertical bar crossing like a plus sign: no corner of either
  // lies inside the other.
  const CRectD hd(0, 6, 10, 2), vd(4, 10, 2, 10);
  const CRectF hf(0, 6, 10, 2), vf(4, 10, 2, 10);
  const CRectFL hl(0, 6, 10, 2), vl(4, 10, 2, 10);
  const CFRect hc(0, 6, 10, 4), vc(4, 10, 6, 0);
  EXPECT_TRUE(hd.IsOverlappedWith(vd));
  EXPECT_TRUE(hf.IsOverlappedWith(vf));
  EXPECT_TRUE(vf.IsOverlappedWith(hf));
  EXPECT_TRUE(hl.IsOverlappedWith(vl));
  EXPECT_FALSE(hc.IsOverlappedWith(vc));
  EXPECT_FALSE(vc.IsOverlappedWith(hc));
  EXPECT_TRUE(CFRect::GetIntersectRect(hc, vc).IsRectNull());

  // Apart: none of them overlaps; sharing a corner point counts only for CFRect.
  EXPECT_FALSE(CRectF(0, 2, 2, 2).IsOverlappedWith(CRectF(5, 2, 2, 2)));
  EXPECT_TRUE(CFRect(0, 2, 2, 0).IsOverlappedWith(CFRect(2, 4, 4, 2)));
  EXPECT_FALSE(CRectF(0, 2, 2, 2).IsOverlappedWith(CRectF(2, 4, 2, 2)));
}

TEST(FloatRects, CRectFIntersectionComesOutWithTopAndBottomExchanged) {
  const CRectF r = CRectF::GetIntersectRect(CRectF(0, 10, 10, 10), CRectF(5, 8, 10, 10));
  EXPECT_EQ(r.left, 5.0f);
  EXPECT_EQ(r.top, 0.0f);
  EXPECT_EQ(r.width, 5.0f);
  EXPECT_EQ(r.height, -8.0f);
  EXPECT_TRUE(CRectF::GetIntersectRect(CRectF(0, 1, 1, 1), CRectF(5, 1, 1, 1)).IsRectNull());

  const CFRect c = CFRect::GetIntersectRect(CFRect(0, 10, 10, 0), CFRect(5, 8, 15, -2));
  EXPECT_TRUE(c.EqualRect(CFRect(5, 8, 10, 0)));
}

TEST(FloatRects, UnionTakesItsInputsAsTheyAreAndEachStyleJudgesEmptiness) {
  // CRectF, like CRectD: an all-zero input pulls the box to the origin; a box with a
  // zero extent is empty.
  CRectF f;
  EXPECT_NE(f.UnionRect(CRectF(), CRectF(5, 7, 1, 1)), 0);
  EXPECT_EQ(f, CRectF(0, 7, 6, 7));
  EXPECT_EQ(f.UnionRect(CRectF(1, 1, 0, 1), CRectF(1, 2, 0, 1)), 0);
  EXPECT_EQ(f, CRectF(1, 2, 0, 2));
  EXPECT_NE(f.UnionRect(CRectD(0, 2, 1, 1), CRectD(3, 1, 1, 1)), 0) << "the double overload";
  EXPECT_EQ(f, CRectF(0, 2, 4, 2));

  // CFRect: fields as stored, never normalised; only a zero side makes the box empty.
  struct Row {
    const char* name;
    CFRect a, b, expected;
    bool notEmpty;
  };
  const Row rows[] = {
      {"plain boxes", CFRect(0, 2, 1, 0), CFRect(3, 5, 4, 4), CFRect(0, 5, 4, 0), true},
      {"inverted inputs stay inverted", CFRect(4, 0, 0, 10), CFRect(4, 0, 0, 10), CFRect(4, 0, 0, 10), true},
      {"a zero width is empty", CFRect(1, 2, 1, 0), CFRect(1, 5, 1, 3), CFRect(1, 5, 1, 0), false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    CFRect u;
    EXPECT_EQ(u.UnionRect(row.a, row.b) != 0, row.notEmpty);
    EXPECT_TRUE(u.EqualRect(row.expected));
  }
}

TEST(FloatRects, AnchoredFloatRectsGrowAndScaleEveryField) {
  // Growing moves the anchor left and up (y-up) and adds both margins to each extent;
  // UnitChange scales the anchor as well as the extents.
  CRectF f(1, 2, 3, 4);
  CRectFL l(1, 2, 3, 4);
  f.Inflate(1.0f, 2.0f);
  l.Inflate(1.0f, 2.0f);
  EXPECT_EQ(f, CRectF(0, 4, 5, 8));
  EXPECT_TRUE(l == CRectFL(0, 4, 5, 8));
  f.UnitChange(0.5);
  l.UnitChange(0.5);
  EXPECT_EQ(f, CRectF(0, 2, 2.5f, 4));
  EXPECT_TRUE(l == CRectFL(0, 2, 2.5f, 4));
}

TEST(FloatRects, CFRectEqualityNormalisesItsLeftOperand) {
  CFRect a(4, 0, 0, 10);
  const CFRect b(0, 10, 4, 0);
  EXPECT_FALSE(a.EqualRect(b));
  EXPECT_TRUE(a == b);
  EXPECT_TRUE(a.EqualRect(CFRect(0, 10, 4, 0))) << "left operand normalised in place";
  // The const form used by array comparison works on a copy.
  const CFRect constA(4, 0, 0, 10);
  EXPECT_FALSE(constA != b);
  EXPECT_EQ(constA.left, 4.0f);
  // Arrays compare through each element's own operator!=, so the left array's
  // elements are normalised by the comparison, as in the original.
  CFRectArray x, y;
  x.Add(new CFRect(4, 0, 0, 10));
  y.Add(new CFRect(0, 10, 4, 0));
  EXPECT_TRUE(x == y);
  EXPECT_EQ(x[0]->left, 0.0f);
  EXPECT_EQ(y[0]->left, 0.0f);
}

TEST(FloatRects, SquaresInflationAndMirror) {
  CFRect tall(0, 6, 2, 0);
  tall.InflateToMaxSideSqure();
  EXPECT_EQ(tall.Width(), 2.0f);
  EXPECT_EQ(tall.Height(), 10.0f) << "always grows vertically";
  CFRect wide(0, 2, 6, 0);
  wide.InflateToMaxSideSqure();
  EXPECT_EQ(wide.Height(), 6.0f);
  EXPECT_EQ(wide.Width(), 6.0f);

  CFRect sq(0, 2, 6, 0);
  sq.MakeSqureBaseOnLongSide();
  EXPECT_TRUE(sq.EqualRect(CFRect(0, 4, 6, -2)));
  CRectF sqf(0, 2, 6, 2);
  sqf.MakeSqureBaseOnLongSide();
  EXPECT_EQ(sqf, CRectF(0, 4, 6, 6));

  CFRect frac(0, 2, 4, 0);
  frac.InflateRect(1.0f);
  EXPECT_TRUE(frac.EqualRect(CFRect(-2, 3, 6, -1))) << "a fraction: 1.0 doubles";
  CRectF pct(0, 2, 4, 2);
  pct.Inflate(200.0);
  EXPECT_EQ(pct, CRectF(-2, 3, 8, 4)) << "a percentage";

  struct Row {
    int axis;
    CRectF expected;
  };
  for (const Row& row : {Row{0, CRectF(1, 5, 2, 3)}, Row{1, CRectF(-3, 5, 2, 3)}, Row{2, CRectF(1, -2, 2, 3)},
                         Row{3, CRectF(1, 5, 2, 3)}}) {
    SCOPED_TRACE(row.axis);
    CRectF r(1, 5, 2, 3);
    r.Mirror(row.axis);
    EXPECT_EQ(r, row.expected);
  }
  CRectF n(4, 0, -4, -2);
  n.NormalizeRect();
  EXPECT_EQ(n, CRectF(4, 0, -4, -2));
}

TEST(FloatRects, ConversionsBetweenStyles) {
  const CRectD d(1.5, 10, 4, 2);
  const CRectF f = d.ConvertToCRectF();
  EXPECT_EQ(f, CRectF(1.5f, 10, 4, 2));
  CFRect c;
  c = d;
  EXPECT_TRUE(c.EqualRect(CFRect(1.5f, 10, 5.5f, 8)));
  EXPECT_EQ(c.ConvertToCRectD(), d);
  EXPECT_EQ(c.ConvertToCRectF(), f);

  CFRectArray arr;
  arr.Add(new CFRect(0, 2, 4, 0));
  arr.Add(nullptr);
  CArrayRectD out;
  out.Add(new CRectD(9, 9, 9, 9));
  arr.ConvertToCArrayRectF(out);
  ASSERT_EQ(out.GetSize(), 2);
  EXPECT_EQ(*out[0], CRectD(0, 2, 4, 2));
  CArrayRectF outF;
  arr.ConvertToCArrayRectF(outF);
  EXPECT_EQ(*outF[0], CRectF(0, 2, 4, 2));

  C2FPointsArray pairs;
  pairs.Add(new C2FPoints(CFPoint(1.0f, 2.0f), CFPoint(3.0f, 4.0f)));
  C2PointDArray dpairs;
  pairs.ConvertPointD(dpairs);
  ASSERT_EQ(dpairs.GetSize(), 1);
  EXPECT_EQ(dpairs[0]->pt2.x, 3.0);
}

TEST(Circle, BandIsTwiceAsWideAsTheRectangles) {
  const CCircleF c(CPointF(0, 0), 1.0f);
  for (float x : {0.0f, 0.5f, 1.0f, 2.0f, 2.9f}) EXPECT_FALSE(c.IsNearPoint(x, 0, 2)) << x;
  const CCircleF big(CPointF(0, 0), 10.0f);
  struct Row {
    float x;
    bool near;
  };
  // w = 1: the band runs from radius 9 (included) to 11 (excluded), total width 2.
  for (const Row& row :
       {Row{8.9f, false}, Row{9.0f, true}, Row{10.0f, true}, Row{10.9f, true}, Row{11.0f, false}}) {
    SCOPED_TRACE(row.x);
    EXPECT_EQ(big.IsNearPoint(row.x, 0, 1), row.near);
  }
  EXPECT_TRUE(big.PtInCircle(9.99f, 0));
  EXPECT_FALSE(big.PtInCircle(10.0f, 0)) << "strictly inside";
  // The rectangle's band is w wide in total: 0.6 from the edge is outside for w = 1.
  EXPECT_FALSE(CRectF(0, 10, 10, 10).IsNearPoint(10.6f, 5, 1));
  EXPECT_TRUE(CRectF(0, 10, 10, 10).IsNearPoint(10.4f, 5, 1));

  CCircleF scaled = big;
  scaled.UnitChange(0.5);
  EXPECT_EQ(scaled, CCircleF(CPointF(0, 0), 5.0f));
}

}  // namespace
