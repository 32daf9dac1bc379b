#include <corlith/framework/Geometry.h>

#include <algorithm>

BOOL CRect::IntersectRect(const RECT& a, const RECT& b) {
  const CRect result(std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                     std::min(a.bottom, b.bottom));
  if (result.IsRectEmpty()) {
    SetRectEmpty();
    return FALSE;
  }
  *this = result;
  return TRUE;
}

BOOL CRect::UnionRect(const RECT& a, const RECT& b) {
  const CRect ra(a);
  const CRect rb(b);
  if (ra.IsRectEmpty() && rb.IsRectEmpty()) {
    SetRectEmpty();
    return FALSE;
  }
  if (ra.IsRectEmpty()) {
    *this = rb;
  } else if (rb.IsRectEmpty()) {
    *this = ra;
  } else {
    SetRect(std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
            std::max(a.bottom, b.bottom));
  }
  return TRUE;
}

CRect CRect::operator&(const RECT& r) const {
  CRect result;
  result.IntersectRect(*this, r);
  return result;
}

CRect CRect::operator|(const RECT& r) const {
  CRect result;
  result.UnionRect(*this, r);
  return result;
}
