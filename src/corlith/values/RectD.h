// CRectD, the axis-aligned double rectangle kept as an anchor corner plus extents in a
// y-up plane (top is the larger y, bottom = top - height), and CArrayRectD, its owning
// array. Extents are not kept non-negative; a zero or negative extent means empty.
#pragma once

#include <corlith/framework/Geometry.h>
#include <corlith/values/PointD.h>

class CRectF;

class CRectD : public CObject {
 public:
  enum { nVersion = 1 };

  CRectD() = default;
  CRectD(double dLeft, double dTop, double dWidth, double dHeight)
      : left(dLeft), top(dTop), width(dWidth), height(dHeight) {}
  CRectD(const CRectD&) = default;
  CRectD& operator=(const CRectD&) = default;
  ~CRectD() override = default;

  virtual CRectD* clone() const { return new CRectD(*this); }
  /// The same object, or all four fields exactly equal (no tolerance, unlike points).
  virtual int operator==(const CRectD& r) const;
  virtual int operator!=(const CRectD& r) const { return !(*this == r); }
  /// Version word 1, left, top, width, height.
  void Serialize(CArchive& ar) override;

  void Init() { left = top = width = height = 0.0; }
  /// Does nothing (kept for hosts that call it).
  void Trace() const {}

  /// Arguments read as left, bottom, right, top (unlike SetData2, deliberately).
  void SetData(double a1, double a2, double a3, double a4);
  /// Arguments read as left, top, right, bottom.
  void SetData2(double a1, double a2, double a3, double a4);
  /// Two corners in any order.
  void SetData(const CPointD& p1, const CPointD& p2);

  double Left() const { return left; }
  double Top() const { return top; }
  double Right() const { return left + width; }
  double Bottom() const { return top - height; }
  double GetWidth() const { return width; }
  double GetHeight() const { return height; }
  /// width x height: negative when exactly one extent is negative.
  double GetArea() const { return width * height; }
  CPointD CenterPoint() const { return {left + width * 0.5, top - height * 0.5}; }
  CPointD LeftTop() const { return {Left(), Top()}; }
  CPointD LeftBtm() const { return {Left(), Bottom()}; }
  CPointD RightTop() const { return {Right(), Top()}; }
  CPointD RightBtm() const { return {Right(), Bottom()}; }

  void Offset(double dx, double dy) { left += dx, top += dy; }
  void OffsetRect(double dx, double dy) { Offset(dx, dy); }
  void Shift(const CPointD& p) { Offset(p.x, p.y); }
  /// Moves the rectangle so that its centre lands on p.
  void ShiftArea(const CPointD& p);
  /// Grows by dx on the left and right and by dy on the top and bottom.
  void Inflate(double dx, double dy);
  void DeflateRect(double dx, double dy) { Inflate(-dx, -dy); }
  /// Scales about the centre to dPercent/100 of the size: a percentage, unlike
  /// DeflateRect(double), deliberately.
  void Inflate(double dPercent);
  /// Shrinks about the centre by dFraction of the size: a fraction, deliberately.
  void DeflateRect(double dFraction);
  /// Each edge x 100000.0 truncated toward zero (clamped to the int range, NaN gives 0);
  /// the integer rectangle keeps top > bottom.
  CRect ConvertToCRect() const;
  /// The four fields narrowed to float, in the same order (include RectF.h to call it).
  CRectF ConvertToCRectF() const;

  /// width <= 0 or height <= 0.
  BOOL IsRectEmpty() const { return width <= 0 || height <= 0; }
  /// Strictly inside: a point on an edge is outside.
  BOOL PtInRect(double x, double y) const;
  BOOL PtInRect(const CPointD& p) const { return PtInRect(p.x, p.y); }
  /// Inside or on an edge.
  BOOL PtOnRect(double x, double y) const;
  BOOL PtOnRect(const CPointD& p) const { return PtOnRect(p.x, p.y); }
  /// All four corners of r strictly inside this rectangle.
  BOOL IsInner(const CRectD& r) const;
  /// Within the band of total width w centred on the outline (strict on both sides).
  BOOL IsNearPoint(double x, double y, double w) const;
  /// The rectangles touch or overlap within dMargin (edges count).
  BOOL IsToCheck(const CRectD& r, double dMargin) const;
  /// Corner and cross tests in a fixed order; deliberately not an interval test, so
  /// rectangles sharing only an edge, and some overlaps the tests miss, count as apart.
  bool IsOverlappedWith(const CRectD& r) const;
  /// 0 inside or on an edge; else 1 above, then counter-clockwise 2 above-left, 3 left,
  /// 4 below-left, 5 below, 6 below-right, 7 right, 8 above-right.
  int DetermineRectSideOf(const CPointD& p) const;
  /// Sets this to the overlap of a and b (kept even when empty); non-zero when not empty.
  int IntersectionRect(const CRectD& a, const CRectD& b);
  /// Sets this to the box around a and b; empty inputs are not skipped. Non-zero when not empty.
  int UnionRect(const CRectD& a, const CRectD& b);

  double left = 0.0;
  double top = 0.0;
  double width = 0.0;
  double height = 0.0;
};

class CArrayRectD : public corlith::OwningPtrArray<CArrayRectD, CRectD> {
 public:
  enum { m_nVersion = 1 };

  /// All zero when empty; else element 0 united with each further element in order.
  CRectD GetMaxMinRect() const;
};
