// CPointD, the planar double point of the library, compared with the shared tolerance
// (CUnitTolerance); CArrayPointD, its value array; CArrayArrayPointD, an owning array
// of such arrays. Coordinates are y-up, angles degrees counter-clockwise.
#pragma once

#include <corlith/values/ExPtrArray.h>

#include <tuple>
#include <utility>

class CPointF;

class CPointD : public CObject {
 public:
  enum { m_nVersion = 1 };

  CPointD() = default;
  CPointD(double dx, double dy) : x(dx), y(dy) {}
  CPointD(const CPointD&) = default;
  CPointD& operator=(const CPointD&) = default;
  /// Widens the float point's coordinates.
  CPointD(const CPointF& p);  // NOLINT(google-explicit-constructor): a widening, as in the original
  CPointD& operator=(const CPointF& p);
  ~CPointD() override = default;

  double GetX() const { return x; }
  double GetY() const { return y; }
  double& GetX() { return x; }
  double& GetY() { return y; }
  void SetX(double dx) { x = dx; }
  void SetY(double dy) { y = dy; }
  void SetData(double dx, double dy) { x = dx, y = dy; }
  void Init() { x = y = 0.0; }

  CPointD operator+(const CPointD& p) const { return {x + p.x, y + p.y}; }
  CPointD operator-(const CPointD& p) const { return {x - p.x, y - p.y}; }
  CPointD operator*(double d) const { return {x * d, y * d}; }
  /// No guard against 0: floating-point rules apply.
  CPointD operator/(double d) const { return {x / d, y / d}; }
  CPointD& operator+=(const CPointD& p) { return x += p.x, y += p.y, *this; }
  CPointD& operator-=(const CPointD& p) { return x -= p.x, y -= p.y, *this; }

  /// Equal when the distance is strictly below the shared tolerance (exactly the
  /// tolerance apart is unequal).
  virtual int operator==(const CPointD& p) const;
  virtual int operator!=(const CPointD& p) const { return !(*this == p); }
  /// |dx| < 0.0001 and |dy| < 0.0001, whatever the shared tolerance (a square, not a circle).
  int IsMathEqual(const CPointD& p) const;

  double DistanceToPoint(const CPointD& p) const;
  /// Inside the box spanned by a and b in any order, edges included.
  BOOL PtInRect(const CPointD& a, const CPointD& b) const;
  /// 0 negates y, 1 negates x, anything else does nothing (the opposite of MirrorOfAxis, deliberately).
  void Mirror(int nAxis);
  /// 0 negates x, 1 negates y.
  void MirrorOfAxis(int nAxis);
  /// About the origin, counter-clockwise for positive degrees.
  void Rotate(double dDegrees);
  /// Rotates (unless the angle is exactly 0), then adds (dx, dy).
  void Translate(double dx, double dy, double dDegrees);
  /// Rotates, then subtracts (dx, dy): the opposite sign of Translate, deliberately.
  void MoveRotate(double dx, double dy, double dDegrees);
  void ReScale(double sx, double sy) { x *= sx, y *= sy; }
  void ReScale(double s) { ReScale(s, s); }
  void UnitConvert(double dFactor) { ReScale(dFactor); }
  void SwapXY() { std::swap(x, y); }
  /// Negates x only.
  void vReverse() { x = -x; }

  /// The fields of the archive form, in order: a point is a record (ArchiveConventions.h),
  /// so value arrays of points load straight from the archive buffer.
  std::tuple<double&, double&> ArchiveFields() { return {x, y}; }
  /// Version word 1, x, y.
  void Serialize(CArchive& ar) override { corlith::SerializeRecord(ar, *this); }

  double x = 0.0;
  double y = 0.0;
};

/// Value array of points.
class CArrayPointD : public corlith::ValueArray<CArrayPointD, CPointD> {
 public:
  enum { m_nVersion = 1 };

  /// An element with x and y exactly equal (no tolerance).
  BOOL IsExist(double x, double y) const;
  /// ascending != 0: ascending; axis 0 by x then y, axis 1 by y then x; any other axis
  /// leaves the array as it is. Stable: points that compare equal (0.0 and -0.0 are
  /// equal) keep their order. NaN coordinates make the order inconsistent; every point
  /// is kept all the same.
  void Sort(const int& nAscending, int nAxis);
  void UnitConvert(double dFactor);

  /// Three-way comparators over const CPointD* (for qsort over the element storage).
  static int CompareForAscendingX(const void* a, const void* b);
  static int CompareForAscendingY(const void* a, const void* b);
  static int CompareForDescendingX(const void* a, const void* b);
  static int CompareForDescendingY(const void* a, const void* b);
};

/// Owning array of point arrays; each inner array carries its own header and count.
class CArrayArrayPointD : public corlith::OwningPtrArray<CArrayArrayPointD, CArrayPointD> {};
