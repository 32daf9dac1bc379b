// C2PointD, a segment of two tolerant-equal-compared points, and C2PointDArray, its
// owning array with distance sums.
#pragma once

#include <corlith/values/PointD.h>

class C2PointD : public CObject {
 public:
  enum { m_nVersion = 1 };

  C2PointD() = default;
  C2PointD(const CPointD& p1, const CPointD& p2) : pt1(p1), pt2(p2) {}
  C2PointD(const C2PointD&) = default;
  C2PointD& operator=(const C2PointD&) = default;
  ~C2PointD() override = default;

  /// pt1 == pt1 and pt2 == pt2, both with the shared tolerance.
  virtual int operator==(const C2PointD& o) const { return pt1 == o.pt1 && pt2 == o.pt2; }
  virtual int operator!=(const C2PointD& o) const { return !(*this == o); }
  /// Version word 1, then each point as a full CPointD record.
  void Serialize(CArchive& ar) override;
  virtual C2PointD* clone() const { return new C2PointD(*this); }

  /// (x1 - x2)^2 + (y1 - y2)^2.
  double GetSquareDistance() const;
  /// The square root of GetSquareDistance (the spelling is part of the interface).
  double GetDiatance() const;
  void Init() { pt1.Init(), pt2.Init(); }
  void UnitConvert(double dFactor) { pt1.UnitConvert(dFactor), pt2.UnitConvert(dFactor); }

  CPointD pt1;
  CPointD pt2;
};

class C2PointDArray : public corlith::OwningPtrArray<C2PointDArray, C2PointD> {
 public:
  /// 0 for an empty array; null slots count 0.
  double SumElementDistances() const;
  double SumElementSquareDistances() const;
  void UnitConvert(double dFactor);
};
