#include <corlith/values/RectF.h>

#include <algorithm>
#include <cmath>

namespace {

template <class RECT>
void SerializeFloatRect(CArchive& ar, RECT& r) {
  corlith::SerializeFields(ar, RECT::nVersion, r.left, r.top, r.width, r.height);
}

}  // namespace

CRectF& CRectF::operator=(const CRectD& r) {
  left = static_cast<float>(r.left);
  top = static_cast<float>(r.top);
  width = static_cast<float>(r.width);
  height = static_cast<float>(r.height);
  return *this;
}

int CRectF::operator==(const CRectF& r) const {
  return left == r.left && top == r.top && width == r.width && height == r.height;
}

void CRectF::Serialize(CArchive& ar) { SerializeFloatRect(ar, *this); }

void CRectF::SetData(float a1, float a2, float a3, float a4) {
  left = a1;
  top = a4;
  width = a3 - a1;
  height = a4 - a2;
}

BOOL CRectF::PtInRect(float x, float y) const {
  return Left() < x && x < Right() && Bottom() < y && y < Top();
}

BOOL CRectF::IsNearPoint(float x, float y, float w) const {
  CRectF outer(*this);
  outer.Inflate(w / 2, w / 2);
  CRectF inner(*this);
  inner.Inflate(-w / 2, -w / 2);
  return outer.PtInRect(x, y) && !inner.PtInRect(x, y);
}

int CRectF::UnionRect(const CRectF& a, const CRectF& b) {
  const float l = std::min(a.Left(), b.Left());
  const float t = std::max(a.Top(), b.Top());
  const float r = std::max(a.Right(), b.Right());
  const float btm = std::min(a.Bottom(), b.Bottom());
  left = l;
  top = t;
  width = r - l;
  height = t - btm;
  return !IsRectEmpty();
}

int CRectF::UnionRect(const CRectD& a, const CRectD& b) { return UnionRect(CRectF(a), CRectF(b)); }

void CRectF::Inflate(double dPercent) {
  const double k = dPercent / 100.0 - 1.0;
  Inflate(static_cast<float>(k * width / 2), static_cast<float>(k * height / 2));
}

void CRectF::Inflate(float dx, float dy) {
  left -= dx;
  width += 2 * dx;
  top += dy;
  height += 2 * dy;
}

void CRectF::UnitChange(const double& f) {
  left = static_cast<float>(left * f);
  top = static_cast<float>(top * f);
  width = static_cast<float>(width * f);
  height = static_cast<float>(height * f);
}

void CRectF::MakeSqureBaseOnLongSide() {
  const CPointF c = CenterPoint();
  if (width > height) {
    height = width;
    top = c.y + width / 2;
  } else {
    width = height;
    left = c.x - height / 2;
  }
}

BOOL CRectF::IsOverlappedWith(const CRectF& r) const {
  if (PtInRect(r.TopLeft()) || PtInRect(r.BottomLeft()) || PtInRect(r.BottomRight()) ||
      PtInRect(r.TopRight()))
    return TRUE;
  if (r.PtInRect(TopLeft()) || r.PtInRect(BottomLeft()) || r.PtInRect(BottomRight()) ||
      r.PtInRect(TopRight()))
    return TRUE;
  if (r.Top() >= Top() && Bottom() >= r.Bottom() && r.Left() >= Left() && Right() >= r.Right()) return TRUE;
  if (Top() >= r.Top() && r.Bottom() >= Bottom() && Left() >= r.Left() && r.Right() >= Right()) return TRUE;
  return FALSE;
}

CRectF CRectF::GetIntersectRect(const CRectF& a, const CRectF& b) {
  CRectF result;
  if (!a.IsOverlappedWith(b)) return result;
  result.SetData(std::max(a.Left(), b.Left()), std::min(a.Top(), b.Top()), std::min(a.Right(), b.Right()),
                 std::max(a.Bottom(), b.Bottom()));
  return result;
}

void CRectF::Mirror(const int& nAxis) {
  if (nAxis == 1) {
    left = -left - width;
  } else if (nAxis == 2) {
    top = height - top;
  }
}

int CRectFL::operator==(const CRectFL& r) const {
  return left == r.left && top == r.top && width == r.width && height == r.height;
}

void CRectFL::Serialize(CArchive& ar) { SerializeFloatRect(ar, *this); }

void CRectFL::Inflate(float dx, float dy) {
  left -= dx;
  width += 2 * dx;
  top += dy;
  height += 2 * dy;
}

void CRectFL::UnitChange(double f) {
  left = static_cast<float>(left * f);
  top = static_cast<float>(top * f);
  width = static_cast<float>(width * f);
  height = static_cast<float>(height * f);
}
