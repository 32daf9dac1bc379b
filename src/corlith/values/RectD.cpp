#include <corlith/values/RectD.h>
#include <corlith/values/RectF.h>

#include <corlith/framework/Numeric.h>
#include <corlith/values/RectMath.h>

#include <algorithm>
#include <cmath>
#include <limits>

int CRectD::operator==(const CRectD& r) const {
  return this == &r || (left == r.left && top == r.top && width == r.width && height == r.height);
}

void CRectD::Serialize(CArchive& ar) { corlith::SerializeFields(ar, nVersion, left, top, width, height); }

void CRectD::SetData(double a1, double a2, double a3, double a4) {
  corlith::SetFromEdges(*this, corlith::RectEdges<double>{a1, a4, a3, a2});
}

void CRectD::SetData2(double a1, double a2, double a3, double a4) {
  corlith::SetFromEdges(*this, corlith::RectEdges<double>{a1, a2, a3, a4});
}

void CRectD::SetData(const CPointD& p1, const CPointD& p2) {
  left = std::min(p1.x, p2.x);
  top = std::max(p1.y, p2.y);
  width = std::fabs(p1.x - p2.x);
  height = std::fabs(p1.y - p2.y);
}

void CRectD::ShiftArea(const CPointD& p) { Shift(p - CenterPoint()); }

void CRectD::Inflate(double dx, double dy) { corlith::InflateAnchored(*this, dx, dy); }

void CRectD::Inflate(double dPercent) { corlith::InflateByPercent(*this, dPercent); }

void CRectD::DeflateRect(double dFraction) { DeflateRect(dFraction * width / 2, dFraction * height / 2); }

CRect CRectD::ConvertToCRect() const {
  return CRect(
      corlith::TruncateClamped<int>(Left() * 100000.0), corlith::TruncateClamped<int>(Top() * 100000.0),
      corlith::TruncateClamped<int>(Right() * 100000.0), corlith::TruncateClamped<int>(Bottom() * 100000.0));
}

CRectF CRectD::ConvertToCRectF() const { return CRectF(*this); }

BOOL CRectD::PtInRect(double x, double y) const { return corlith::StrictlyInside(*this, x, y); }

BOOL CRectD::PtOnRect(double x, double y) const {
  return Left() <= x && x <= Right() && Bottom() <= y && y <= Top();
}

BOOL CRectD::IsInner(const CRectD& r) const {
  return PtInRect(r.LeftTop()) && PtInRect(r.RightTop()) && PtInRect(r.LeftBtm()) && PtInRect(r.RightBtm());
}

BOOL CRectD::IsNearPoint(double x, double y, double w) const {
  return corlith::InOutlineBand(*this, x, y, w);
}

BOOL CRectD::IsToCheck(const CRectD& r, double dMargin) const {
  if (Left() > r.Right() + dMargin) return FALSE;
  if (r.Left() - dMargin > Right()) return FALSE;
  if (r.Bottom() - dMargin > Top()) return FALSE;
  if (Bottom() > r.Top() + dMargin) return FALSE;
  return TRUE;
}

bool CRectD::IsOverlappedWith(const CRectD& r) const {
  if (PtInRect(r.LeftTop()) || PtInRect(r.LeftBtm()) || PtInRect(r.RightBtm()) || PtInRect(r.RightTop()))
    return true;
  if (r.PtInRect(LeftTop()) || r.PtInRect(LeftBtm()) || r.PtInRect(RightBtm()) || r.PtInRect(RightTop()))
    return true;
  if (r.Top() >= Top() && Top() > r.Bottom() &&
      ((r.Left() >= Left() && Right() >= r.Left()) || (r.Right() >= Left() && Right() >= r.Right())))
    return true;
  if (Top() >= r.Top() && r.Top() > Bottom() &&
      ((Left() >= r.Left() && r.Right() >= Left()) || (Right() >= r.Left() && r.Right() >= Right())))
    return true;
  return false;
}

int CRectD::DetermineRectSideOf(const CPointD& p) const {
  const double x = p.x;
  const double y = p.y;
  const int column = x < Left() ? 0 : (x > Right() ? 2 : 1);
  const int row = y > Top() ? 0 : (y < Bottom() ? 2 : 1);
  static constexpr int kSides[3][3] = {{2, 1, 8}, {3, 0, 7}, {4, 5, 6}};
  return kSides[row][column];
}

int CRectD::IntersectionRect(const CRectD& a, const CRectD& b) {
  corlith::SetFromEdges(*this, corlith::IntersectEdges(corlith::EdgesOf(a), corlith::EdgesOf(b)));
  return !IsRectEmpty();
}

int CRectD::UnionRect(const CRectD& a, const CRectD& b) {
  corlith::SetFromEdges(*this, corlith::UniteEdges(corlith::EdgesOf(a), corlith::EdgesOf(b)));
  return !IsRectEmpty();
}

CRectD CArrayRectD::GetMaxMinRect() const {
  CRectD result;
  if (IsEmpty()) return result;
  // A null slot counts as the all-zero rectangle.
  const CRectD zero;
  const CRectD* first = GetAt(0);
  result = first ? *first : zero;
  for (INT_PTR i = 1; i < GetSize(); ++i) {
    const CRectD* r = GetAt(i);
    result.UnionRect(result, r ? *r : zero);
  }
  return result;
}
