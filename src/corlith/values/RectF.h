// CRectF and CRectFL, float rectangles in the anchor-and-extent style of CRectD (y-up:
// right = left + width, bottom = top - height), with CArrayRectF and CRectFLArray, their
// owning arrays. The corner-style float rectangle is CFRect (FRect.h), kept separate.
#pragma once

#include <corlith/values/PointF.h>
#include <corlith/values/RectD.h>

class CRectF : public CObject {
 public:
  enum { nVersion = 1 };

  CRectF() = default;
  CRectF(float fLeft, float fTop, float fWidth, float fHeight)
      : left(fLeft), top(fTop), width(fWidth), height(fHeight) {}
  CRectF(const CRectF&) = default;
  /// Narrows the four fields.
  CRectF(const CRectD& r) { *this = r; }
  CRectF& operator=(const CRectF&) = default;
  CRectF& operator=(const CRectD& r);
  ~CRectF() override = default;

  /// All four fields exactly equal.
  virtual int operator==(const CRectF& r) const;
  virtual int operator!=(const CRectF& r) const { return !(*this == r); }
  virtual CRectF* clone() const { return new CRectF(*this); }
  /// Version word 1, left, top, width, height as 4-byte floats.
  void Serialize(CArchive& ar) override;

  /// Arguments read as left, bottom, right, top, as CRectD::SetData does.
  void SetData(float a1, float a2, float a3, float a4);

  float Left() const { return left; }
  float Top() const { return top; }
  float Right() const { return left + width; }
  float Bottom() const { return top - height; }
  float GetArea() const { return width * height; }
  CPointF CenterPoint() const { return {left + width * 0.5f, top - height * 0.5f}; }
  CPointF TopLeft() const { return {Left(), Top()}; }
  CPointF TopRight() const { return {Right(), Top()}; }
  CPointF BottomLeft() const { return {Left(), Bottom()}; }
  CPointF BottomRight() const { return {Right(), Bottom()}; }

  /// Strictly inside: a point on an edge is outside (unlike CFRect, deliberately).
  BOOL PtInRect(float x, float y) const;
  BOOL PtInRect(const CPointF& p) const { return PtInRect(p.x, p.y); }
  /// width <= 0 or height <= 0.
  BOOL IsRectEmpty() const { return width <= 0 || height <= 0; }
  /// All four fields exactly 0.
  BOOL IsRectNull() const { return left == 0 && top == 0 && width == 0 && height == 0; }
  /// Within the band of total width w centred on the outline (strict on both sides).
  BOOL IsNearPoint(float x, float y, float w) const;
  /// Sets this to the box around a and b, as CRectD::UnionRect does (empty inputs are not
  /// skipped); non-zero when not empty.
  int UnionRect(const CRectF& a, const CRectF& b);
  /// Both narrowed to float first, then united as above.
  int UnionRect(const CRectD& a, const CRectD& b);
  /// Scales about the centre to dPercent/100 of the size (a percentage, unlike CFRect's fraction).
  void Inflate(double dPercent);
  /// Grows by dx on the left and right and by dy on the top and bottom.
  void Inflate(float dx, float dy);
  void Offset(float dx, float dy) { left += dx, top += dy; }
  void OffsetRect(float dx, float dy) { Offset(dx, dy); }
  /// All four fields x f, narrowed to float.
  void UnitChange(const double& f);
  /// Does nothing for this class (kept as an empty operation, deliberately).
  void NormalizeRect() {}
  /// Keeps the centre and makes both sides the longer one.
  void MakeSqureBaseOnLongSide();
  /// Corner tests (strict), then a crossing test where one rectangle spans the other
  /// vertically and sits inside it horizontally (deliberately not CRectD's cross test).
  BOOL IsOverlappedWith(const CRectF& r) const;
  /// All zero without overlap; otherwise SetData(larger left, smaller top, smaller right,
  /// larger bottom), which leaves top and bottom exchanged (negative height) — deliberate.
  static CRectF GetIntersectRect(const CRectF& a, const CRectF& b);
  /// 1 about the y axis, 2 about the x axis, anything else nothing (deliberately not the
  /// points' 0 and 1).
  void Mirror(const int& nAxis);

  float left = 0.0f;
  float top = 0.0f;
  float width = 0.0f;
  float height = 0.0f;
};

/// The same layout and edge rules as CRectF, with a smaller set of members.
class CRectFL : public CObject {
 public:
  enum { nVersion = 1 };

  CRectFL() = default;
  CRectFL(float fLeft, float fTop, float fWidth, float fHeight)
      : left(fLeft), top(fTop), width(fWidth), height(fHeight) {}
  CRectFL(const CRectFL&) = default;
  CRectFL& operator=(const CRectFL&) = default;
  ~CRectFL() override = default;

  /// All four fields exactly equal.
  virtual int operator==(const CRectFL& r) const;
  virtual int operator!=(const CRectFL& r) const { return !(*this == r); }
  virtual CRectFL* clone() const { return new CRectFL(*this); }
  /// Version word 1, left, top, width, height as 4-byte floats.
  void Serialize(CArchive& ar) override;

  float Left() const { return left; }
  float Top() const { return top; }
  float Right() const { return left + width; }
  float Bottom() const { return top - height; }
  /// Strictly inside.
  BOOL PtInRect(float x, float y) const { return AsRectF().PtInRect(x, y); }
  BOOL IsRectEmpty() const { return width <= 0 || height <= 0; }
  BOOL IsRectNull() const { return left == 0 && top == 0 && width == 0 && height == 0; }
  /// Within the band of total width w centred on the outline.
  BOOL IsNearPoint(float x, float y, float w) const { return AsRectF().IsNearPoint(x, y, w); }
  /// CRectF's corner and crossing tests.
  bool IsOverlappedWith(const CRectFL& r) const { return AsRectF().IsOverlappedWith(r.AsRectF()) != 0; }
  void Inflate(float dx, float dy);
  void Offset(float dx, float dy) { left += dx, top += dy; }
  /// All four fields x f.
  void UnitChange(double f);

  float left = 0.0f;
  float top = 0.0f;
  float width = 0.0f;
  float height = 0.0f;

 private:
  CRectF AsRectF() const { return {left, top, width, height}; }
};

class CArrayRectF : public corlith::OwningPtrArray<CArrayRectF, CRectF> {
 public:
  enum { m_nVersion = 1 };
};

class CRectFLArray : public corlith::OwningPtrArray<CRectFLArray, CRectFL> {
 public:
  enum { m_nVersion = 1 };
};
