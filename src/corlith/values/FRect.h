// The corner-style float rectangle: tagFRECT, the plain record (left, top, right,
// bottom; y-up, so top is normally the larger y), CFRect, its value class with inclusive
// edges, and CFRectArray, its owning array. CRectF (RectF.h) is the other style, kept apart.
#pragma once

#include <corlith/values/FPoint.h>
#include <corlith/values/RectF.h>

struct tagFRECT {
  float left;
  float top;
  float right;
  float bottom;
};

class CFRect : public CObject, public tagFRECT {
 public:
  enum { m_nVersion = 1 };

  CFRect() : tagFRECT{0.0f, 0.0f, 0.0f, 0.0f} {}
  CFRect(float l, float t, float r, float b) : tagFRECT{} { SetRect(l, t, r, b); }
  CFRect(const CFRect& r) = default;
  CFRect& operator=(const CFRect& r) {
    CopyRect(r);
    return *this;
  }
  /// Left and top as stored, right and bottom from the extents.
  CFRect& operator=(const CRectD& r);
  ~CFRect() override = default;

  /// Normalises this rectangle in place, then compares exactly with r as stored: an
  /// equality test that modifies its left operand (deliberate, kept).
  virtual int operator==(const CFRect& r);
  virtual int operator!=(const CFRect& r) { return !(*this == r); }
  /// For a const rectangle (array comparisons): as above on a normalised copy.
  int operator!=(const CFRect& r) const;
  virtual CFRect* clone() const { return new CFRect(*this); }
  /// Version word 1, left, top, right, bottom as 4-byte floats.
  void Serialize(CArchive& ar) override;

  void SetRect(float l, float t, float r, float b) { left = l, top = t, right = r, bottom = b; }
  /// Corners top-left and bottom-right.
  void SetRect(const CFPoint& topLeft, const CFPoint& bottomRight) {
    SetRect(topLeft.x, topLeft.y, bottomRight.x, bottomRight.y);
  }
  void SetRectEmpty() { SetRect(0, 0, 0, 0); }
  void CopyRect(const tagFRECT& r) { SetRect(r.left, r.top, r.right, r.bottom); }
  void Init() { SetRectEmpty(); }

  /// |right - left|, never negative.
  float Width() const;
  /// |top - bottom|, never negative.
  float Height() const;
  float Area() const { return Width() * Height(); }
  CFPoint CenterPoint() const { return {(left + right) / 2, (top + bottom) / 2}; }
  CFPoint TopLeft() const { return {left, top}; }
  CFPoint TopRight() const { return {right, top}; }
  CFPoint BottomLeft() const { return {left, bottom}; }
  CFPoint BottomRight() const { return {right, bottom}; }

  /// Swaps left/right when left > right and top/bottom when bottom > top.
  void NormalizeRect();
  /// Inclusive: an edge point is inside (unlike CRectD and CRectF, deliberately).
  BOOL PtInRect(float x, float y) const { return left <= x && x <= right && bottom <= y && y <= top; }
  BOOL PtInRect(const tagFPOINT& p) const { return PtInRect(p.x, p.y); }
  /// All four exactly 0.
  BOOL IsRectNull() const { return left == 0 && top == 0 && right == 0 && bottom == 0; }
  /// Width or height is 0.
  BOOL IsRectEmpty() const { return Width() == 0 || Height() == 0; }
  /// All four corners of r inside by the inclusive test.
  BOOL IsCover(const CFRect& r) const;
  /// A corner of either inside the other (inclusive); no crossing test, so a plus-sign
  /// crossing counts as apart (deliberately unlike CRectD and CRectF).
  BOOL IsOverlappedWith(const CFRect& r) const;
  /// Exactly equal fields as stored, without normalising.
  BOOL EqualRect(const CFRect& r) const {
    return left == r.left && top == r.top && right == r.right && bottom == r.bottom;
  }

  /// Normalises, then moves every side outwards by dx (left, right) and dy (top, bottom).
  void InflateRect(float dx, float dy);
  /// Normalises, then moves every side inwards.
  void DeflateRect(float dx, float dy);
  /// InflateRect(width*f/2, height*f/2): a fraction, so 1.0 doubles both sides.
  void InflateRect(float f) { InflateRect(Width() * f / 2, Height() * f / 2); }
  void DeflateRect(float f) { DeflateRect(Width() * f / 2, Height() * f / 2); }
  void OffsetRect(float dx, float dy) { left += dx, right += dx, top += dy, bottom += dy; }
  void OffsetRect(const CFPoint& p) { OffsetRect(p.x, p.y); }
  void Shift(float dx, float dy) { OffsetRect(dx, dy); }
  void Shift(const CFPoint& p) { OffsetRect(p.x, p.y); }
  /// Moves the rectangle so that its centre lands on p.
  void ShiftArea(const CFPoint& p);
  /// Smaller left, larger top, larger right, smaller bottom of the fields as stored (not
  /// normalised, unlike InflateRect); non-zero unless a side of the result is zero, so an
  /// inverted result counts as not empty.
  BOOL UnionRect(const CFRect& a, const CFRect& b);
  /// All zero without overlap; else larger left, smaller top, smaller right, larger bottom
  /// of the fields as stored (top stays the top, unlike CRectF::GetIntersectRect).
  static CFRect GetIntersectRect(const CFRect& a, const CFRect& b);
  /// Keeps the centre and stretches the shorter side to the longer one.
  void MakeSqureBaseOnLongSide();
  /// InflateRect(0, |width - height| / 2): always grows vertically, even when the height
  /// is already the longer side (deliberate, kept).
  void InflateToMaxSideSqure();
  /// Rotates the corners (left, bottom) and (right, top) about the origin (pi taken as
  /// 3.141592) and stores them back without normalising.
  void Rotate(float fDegrees);
  /// Rotate, then Shift(dx, dy).
  void Translate(float dx, float dy, float fDegrees);
  /// (left, top, Width, Height).
  CRectD ConvertToCRectD() const;
  CRectF ConvertToCRectF() const;
};

class CFRectArray : public corlith::OwningPtrArray<CFRectArray, CFRect> {
 public:
  enum { m_nVersion = 1 };

  /// Deletes out's elements, then appends each rectangle converted (a null slot
  /// converts as the all-zero rectangle).
  void ConvertToCArrayRectF(CArrayRectD& out) const;
  void ConvertToCArrayRectF(CArrayRectF& out) const;
};
