// CPointF, the float point of the anchor-and-extent style (CRectF, CCircleF), compared
// exactly; CArrayPointF, its value array. The corner style's point is CFPoint (FPoint.h):
// the two are kept apart on purpose.
#pragma once

#include <corlith/values/ExPtrArray.h>

class CPointD;

class CPointF : public CObject {
 public:
  enum { m_nVersion = 1 };

  CPointF() = default;
  CPointF(float fx, float fy) : x(fx), y(fy) {}
  CPointF(const CPointF&) = default;
  CPointF& operator=(const CPointF&) = default;
  /// Narrows both coordinates to float.
  CPointF& operator=(const CPointD& p);
  ~CPointF() override = default;

  /// Exactly equal coordinates (no tolerance, unlike CFPoint and CPointD).
  virtual int operator==(const CPointF& p) const { return x == p.x && y == p.y; }
  virtual int operator!=(const CPointF& p) const { return !(*this == p); }
  virtual CPointF* clone() const { return new CPointF(*this); }
  /// Version word 1, x, y as 4-byte floats.
  void Serialize(CArchive& ar) override;

  /// Both coordinates x f, computed in double and narrowed to float.
  void UnitChange(const double& f);

  float x = 0.0f;
  float y = 0.0f;
};

/// Value array of float points; it has no archive form of its own (the framework
/// array's count-then-elements form applies).
class CArrayPointF : public CArray<CPointF, const CPointF&> {
 public:
  enum { m_nVersion = 1 };
};
