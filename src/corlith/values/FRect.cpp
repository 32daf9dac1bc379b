#include <corlith/values/FRect.h>

#include <corlith/values/RectMath.h>

#include <cmath>
#include <memory>
#include <utility>

namespace {

// The fields as they are: union and intersection do not normalise their inputs.
corlith::RectEdges<float> EdgesAsStored(const tagFRECT& r) { return {r.left, r.top, r.right, r.bottom}; }

}  // namespace

CFRect& CFRect::operator=(const CRectD& r) {
  SetRect(static_cast<float>(r.Left()), static_cast<float>(r.Top()), static_cast<float>(r.Right()),
          static_cast<float>(r.Bottom()));
  return *this;
}

int CFRect::operator==(const CFRect& r) {
  NormalizeRect();
  return EqualRect(r);
}

int CFRect::operator!=(const CFRect& r) const {
  CFRect copy(*this);
  return !(copy == r);
}

void CFRect::Serialize(CArchive& ar) { corlith::SerializeFields(ar, m_nVersion, left, top, right, bottom); }

float CFRect::Width() const { return std::fabs(right - left); }
float CFRect::Height() const { return std::fabs(top - bottom); }

void CFRect::NormalizeRect() {
  if (left > right) std::swap(left, right);
  if (bottom > top) std::swap(top, bottom);
}

BOOL CFRect::IsCover(const CFRect& r) const {
  return PtInRect(r.TopLeft()) && PtInRect(r.BottomLeft()) && PtInRect(r.BottomRight()) &&
         PtInRect(r.TopRight());
}

BOOL CFRect::IsOverlappedWith(const CFRect& r) const {
  return PtInRect(r.TopLeft()) || PtInRect(r.BottomLeft()) || PtInRect(r.BottomRight()) ||
         PtInRect(r.TopRight()) || r.PtInRect(TopLeft()) || r.PtInRect(BottomLeft()) ||
         r.PtInRect(BottomRight()) || r.PtInRect(TopRight());
}

void CFRect::InflateRect(float dx, float dy) {
  NormalizeRect();
  left -= dx;
  bottom -= dy;
  right += dx;
  top += dy;
}

void CFRect::DeflateRect(float dx, float dy) {
  NormalizeRect();
  left += dx;
  bottom += dy;
  right -= dx;
  top -= dy;
}

void CFRect::ShiftArea(const CFPoint& p) { Shift(p - CenterPoint()); }

BOOL CFRect::UnionRect(const CFRect& a, const CFRect& b) {
  const auto e = corlith::UniteEdges(EdgesAsStored(a), EdgesAsStored(b));
  SetRect(e.left, e.top, e.right, e.bottom);
  return !IsRectEmpty();
}

CFRect CFRect::GetIntersectRect(const CFRect& a, const CFRect& b) {
  if (!a.IsOverlappedWith(b)) return {};
  const auto e = corlith::IntersectEdges(EdgesAsStored(a), EdgesAsStored(b));
  return {e.left, e.top, e.right, e.bottom};
}

void CFRect::MakeSqureBaseOnLongSide() {
  const CFPoint c = CenterPoint();
  const float w = Width();
  const float h = Height();
  if (w > h) {
    top = c.y + w / 2;
    bottom = c.y - w / 2;
  } else {
    left = c.x - h / 2;
    right = c.x + h / 2;
  }
}

void CFRect::InflateToMaxSideSqure() { InflateRect(0.0f, std::fabs(Width() - Height()) / 2); }

void CFRect::Rotate(float fDegrees) {
  CFPoint lb(left, bottom);
  CFPoint rt(right, top);
  lb.Rotation(fDegrees);
  rt.Rotation(fDegrees);
  left = lb.x;
  bottom = lb.y;
  right = rt.x;
  top = rt.y;
}

void CFRect::Translate(float dx, float dy, float fDegrees) {
  Rotate(fDegrees);
  Shift(dx, dy);
}

CRectD CFRect::ConvertToCRectD() const { return {left, top, Width(), Height()}; }
CRectF CFRect::ConvertToCRectF() const { return {left, top, Width(), Height()}; }

namespace {

template <class OUT, class ELEM>
void ConvertInto(const CFRectArray& in, OUT& out, ELEM (CFRect::*convert)() const) {
  out.DeleteAll();
  const CFRect zero;
  for (const CFRect* r : in) {
    auto converted = std::make_unique<ELEM>(((r ? *r : zero).*convert)());
    out.Add(converted.get());
    static_cast<void>(converted.release());  // out owns it now
  }
}

}  // namespace

void CFRectArray::ConvertToCArrayRectF(CArrayRectD& out) const {
  ConvertInto(*this, out, &CFRect::ConvertToCRectD);
}
void CFRectArray::ConvertToCArrayRectF(CArrayRectF& out) const {
  ConvertInto(*this, out, &CFRect::ConvertToCRectF);
}
