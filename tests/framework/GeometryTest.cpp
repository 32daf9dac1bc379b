// CPoint, CSize and CRect: half-open rectangles (left/top in, right/bottom out),
// empty operands in set operations, and 32-bit wrap-around instead of undefined
// signed overflow (the sanitizer build checks the latter).
#include <corlith/framework/Geometry.h>

#include <gtest/gtest.h>

#include <climits>
#include <initializer_list>
#include <ostream>

void PrintTo(const CRect& r, std::ostream* os) {
  *os << "(" << r.left << "," << r.top << "," << r.right << "," << r.bottom << ")";
}
void PrintTo(const CPoint& p, std::ostream* os) { *os << "(" << p.x << "," << p.y << ")"; }
void PrintTo(const CSize& s, std::ostream* os) { *os << "[" << s.cx << "," << s.cy << "]"; }

namespace {

TEST(RectHitTest, LeftAndTopAreInsideRightAndBottomAreNot) {
  const CRect r(10, 20, 30, 40);
  struct Row {
    CPoint p;
    bool inside;
  };
  const Row rows[] = {
      {{10, 20}, true},  {{29, 39}, true}, {{20, 30}, true},  {{30, 20}, false}, {{10, 40}, false},
      {{30, 40}, false}, {{9, 20}, false}, {{10, 19}, false}, {{29, 40}, false}, {{30, 39}, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::PrintToString(row.p));
    EXPECT_EQ(r.PtInRect(row.p) != FALSE, row.inside);
  }
  EXPECT_FALSE(CRect(10, 10, 10, 20).PtInRect(CPoint(10, 10)));
  EXPECT_FALSE(CRect(30, 40, 10, 20).PtInRect(CPoint(20, 30)));
}

struct SetOpRow {
  const char* what;
  CRect a;
  CRect b;
  BOOL ok;
  CRect expected;
};

// The member (IntersectRect, UnionRect) and its operator form must agree on every row.
template <typename Member, typename Operator>
void CheckSetOp(std::initializer_list<SetOpRow> rows, Member member, Operator op) {
  for (const SetOpRow& row : rows) {
    SCOPED_TRACE(row.what);
    CRect out(-1, -2, -3, -4);
    EXPECT_EQ((out.*member)(row.a, row.b), row.ok);
    EXPECT_EQ(out, row.expected);
    EXPECT_EQ(op(row.a, row.b), row.expected);
  }
}

TEST(RectSetOps, IntersectionOfDisjointRectanglesIsFalseAndEmpty) {
  CheckSetOp(
      {
          {"overlap", {0, 0, 10, 10}, {5, 5, 20, 20}, TRUE, {5, 5, 10, 10}},
          {"contained", {0, 0, 10, 10}, {2, 3, 4, 5}, TRUE, {2, 3, 4, 5}},
          {"disjoint", {0, 0, 10, 10}, {20, 20, 30, 30}, FALSE, {0, 0, 0, 0}},
          {"touching edge", {0, 0, 10, 10}, {10, 0, 20, 10}, FALSE, {0, 0, 0, 0}},
          {"empty operand", {0, 0, 10, 10}, {5, 5, 5, 8}, FALSE, {0, 0, 0, 0}},
      },
      &CRect::IntersectRect, [](const CRect& a, const CRect& b) { return a & b; });
  // The result may be one of the operands.
  CRect r(0, 0, 10, 10);
  EXPECT_TRUE(r.IntersectRect(r, CRect(5, -5, 15, 5)));
  EXPECT_EQ(r, CRect(5, 0, 10, 5));
}

TEST(RectSetOps, UnionIgnoresAnEmptyOperand) {
  CheckSetOp(
      {
          {"disjoint", {0, 0, 10, 10}, {20, 20, 30, 30}, TRUE, {0, 0, 30, 30}},
          {"empty far away", {0, 0, 10, 10}, {100, 100, 100, 200}, TRUE, {0, 0, 10, 10}},
          {"empty first", {-50, -50, -50, -50}, {1, 2, 3, 4}, TRUE, {1, 2, 3, 4}},
          {"inverted counts as empty", {0, 0, 10, 10}, {90, 90, 80, 95}, TRUE, {0, 0, 10, 10}},
          {"both empty", {5, 5, 5, 5}, {9, 9, 1, 1}, FALSE, {0, 0, 0, 0}},
      },
      &CRect::UnionRect, [](const CRect& a, const CRect& b) { return a | b; });
}

TEST(RectShape, NormalizeInflateDeflateAndCenter) {
  CRect r(30, 40, 10, 20);
  EXPECT_TRUE(r.IsRectEmpty());
  r.NormalizeRect();
  EXPECT_EQ(r, CRect(10, 20, 30, 40));
  CRect mixed(10, 40, 30, 20);
  mixed.NormalizeRect();
  EXPECT_EQ(mixed, CRect(10, 20, 30, 40));

  CRect inflated = r;
  inflated.InflateRect(2, 3);
  EXPECT_EQ(inflated, CRect(8, 17, 32, 43));
  inflated.InflateRect(1, 2, 3, 4);
  EXPECT_EQ(inflated, CRect(7, 15, 35, 47));
  inflated.InflateRect(CSize(-1, -1));
  EXPECT_EQ(inflated, CRect(8, 16, 34, 46));

  CRect deflated = r;
  deflated.DeflateRect(2, 3);
  EXPECT_EQ(deflated, CRect(12, 23, 28, 37));
  deflated.DeflateRect(1, 2, 3, 4);
  EXPECT_EQ(deflated, CRect(13, 25, 25, 33));

  struct Row {
    CRect rect;
    CPoint center;
  };
  const Row rows[] = {
      {{0, 0, 10, 20}, {5, 10}},
      {{0, 0, 3, 3}, {1, 1}},
      {{-3, -3, 0, 0}, {-1, -1}},  // toward zero
      {{INT_MAX - 10, INT_MIN, INT_MAX, INT_MIN + 4}, {INT_MAX - 5, INT_MIN + 2}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::PrintToString(row.rect));
    EXPECT_EQ(row.rect.CenterPoint(), row.center);
  }

  CRect moved(10, 20, 30, 45);
  moved.MoveToXY(-5, 0);
  EXPECT_EQ(moved, CRect(-5, 0, 15, 25));
}

// Windows coordinates are 32-bit and wrap; here that must happen without signed
// overflow, which the undefined-behaviour sanitizer would report.
TEST(GeometryOverflow, ArithmeticWrapsAtThirtyTwoBits) {
  EXPECT_EQ(CPoint(INT_MAX, INT_MIN) + CSize(1, -1), CPoint(INT_MIN, INT_MAX));
  EXPECT_EQ(CPoint(INT_MIN, 0) - CPoint(1, 0), CSize(INT_MAX, 0));
  EXPECT_EQ(-CPoint(INT_MIN, 1), CPoint(INT_MIN, -1));
  EXPECT_EQ(-CSize(INT_MIN, 0), CSize(INT_MIN, 0));
  EXPECT_EQ(CSize(INT_MAX, 0) + CSize(1, 0), CSize(INT_MIN, 0));

  CPoint p(INT_MAX, INT_MAX);
  p.Offset(1, 2);
  EXPECT_EQ(p, CPoint(INT_MIN, INT_MIN + 1));
  p -= CSize(1, 1);
  EXPECT_EQ(p, CPoint(INT_MAX, INT_MIN));

  EXPECT_EQ(CRect(INT_MIN, 0, INT_MAX, 0).Width(), -1);
  EXPECT_EQ(CRect(0, INT_MAX, 0, INT_MIN).Height(), 1);

  CRect r(INT_MAX - 1, INT_MIN + 1, INT_MAX, INT_MIN + 2);
  r.OffsetRect(2, -2);
  EXPECT_EQ(r, CRect(INT_MIN, INT_MAX, INT_MIN + 1, INT_MIN));
  CRect grown(INT_MIN, INT_MIN, INT_MAX, INT_MAX);
  grown.InflateRect(1, 1);
  EXPECT_EQ(grown, CRect(INT_MAX, INT_MAX, INT_MIN, INT_MIN));
  EXPECT_EQ(CRect(CPoint(INT_MAX, 0), CSize(1, 1)), CRect(INT_MAX, 0, INT_MIN, 1));
}

}  // namespace
