// CCircleF, a float circle (a CPointF centre and a radius) with point tests and a
// band test whose band is twice as wide as the rectangles' (deliberately).
#pragma once

#include <corlith/values/PointF.h>

class CCircleF : public CObject {
 public:
  enum { nVersion = 1 };

  CCircleF() = default;
  CCircleF(const CPointF& ptCenter, float fRadius) : center(ptCenter), radius(fRadius) {}
  CCircleF(const CCircleF&) = default;
  CCircleF& operator=(const CCircleF&) = default;

  // The virtual slots in the original's order: UnitChange comes before the destructor.
  /// The centre's UnitChange, then radius x factor narrowed to float.
  virtual void UnitChange(double dFactor);
  ~CCircleF() override = default;
  /// Centres exactly equal (CPointF's own equality) and radii exactly equal.
  virtual int operator==(const CCircleF& c) const { return center == c.center && radius == c.radius; }
  virtual int operator!=(const CCircleF& c) const { return !(*this == c); }
  /// Version word 1, the centre as a full CPointF record, then the radius as a 4-byte float.
  void Serialize(CArchive& ar) override;

  /// The distance from the centre (in double) is strictly below the radius.
  bool PtInCircle(float x, float y) const;
  /// False when w > radius; else outside the circle of radius - w and inside the one of
  /// radius + w: a band of total width 2w (the rectangles' band is w wide, deliberately).
  bool IsNearPoint(float x, float y, float w) const;

  CPointF center;
  float radius = 0.0f;
};
