// The corner-style float point: tagFPOINT, the plain record, and CFPoint, its value
// class compared with a fixed, inclusive 0.0001; C2FPoints, two of them, and its owning
// array C2FPointsArray. CPointF (PointF.h) is the other float style, kept separate.
#pragma once

#include <corlith/values/2PointD.h>
#include <corlith/values/ExPtrArray.h>
#include <corlith/values/PointD.h>

struct tagFPOINT {
  float x;
  float y;
};

class CFPoint : public CObject, public tagFPOINT {
 public:
  enum { m_nVersion = 1 };

  CFPoint() : tagFPOINT{0.0f, 0.0f} {}
  CFPoint(float fx, float fy) : tagFPOINT{fx, fy} {}
  CFPoint(double dx, double dy) : tagFPOINT{static_cast<float>(dx), static_cast<float>(dy)} {}
  CFPoint(double dx, float fy) : tagFPOINT{static_cast<float>(dx), fy} {}
  CFPoint(float fx, double dy) : tagFPOINT{fx, static_cast<float>(dy)} {}
  CFPoint(const tagFPOINT& p) : tagFPOINT(p) {}
  CFPoint(const CFPoint& p) = default;
  CFPoint& operator=(const CFPoint& p) {
    x = p.x, y = p.y;
    return *this;
  }
  ~CFPoint() override = default;

  void Init() { x = y = 0.0f; }
  /// Both coordinates exactly 0.
  BOOL IsInit() const { return x == 0.0f && y == 0.0f; }
  void SetVal(float fx, float fy) { x = fx, y = fy; }
  void Offset(float dx, float dy) { x += dx, y += dy; }
  void Offset(const CFPoint& p) { Offset(p.x, p.y); }

  CFPoint operator+(const CFPoint& p) const { return {x + p.x, y + p.y}; }
  CFPoint operator-(const CFPoint& p) const { return {x - p.x, y - p.y}; }
  /// Adds f to both coordinates.
  CFPoint operator+(float f) const { return {x + f, y + f}; }
  /// Subtracts f from both coordinates.
  CFPoint operator-(float f) const { return {x - f, y - f}; }
  /// No guard against 0: floating-point rules apply.
  CFPoint operator/(float f) const { return {x / f, y / f}; }
  CFPoint& operator+=(const CFPoint& p) { return x += p.x, y += p.y, *this; }
  CFPoint& operator-=(const CFPoint& p) { return x -= p.x, y -= p.y, *this; }
  CFPoint& operator*=(float f) { return x *= f, y *= f, *this; }
  CFPoint& operator/=(float f) { return x /= f, y /= f, *this; }

  /// Rotates this point about the origin in place (pi taken as 3.141592, computed in
  /// double) and returns a copy of the result.
  CFPoint Rotation(float fDegrees);
  CPointD ConvertToCPointD() const { return {x, y}; }

  /// |dx| <= 0.0001 and |dy| <= 0.0001: the bound is inclusive (deliberate; CPointF is exact).
  virtual int operator==(const CFPoint& p) const;
  virtual int operator!=(const CFPoint& p) const { return !(*this == p); }
  virtual CFPoint* clone() const { return new CFPoint(*this); }
  /// Version word 1, x, y as 4-byte floats.
  void Serialize(CArchive& ar) override;
};

class C2FPoints : public CObject {
 public:
  enum { m_nVersion = 1 };

  C2FPoints() = default;
  C2FPoints(const CFPoint& p1, const CFPoint& p2) : pt1(p1), pt2(p2) {}
  C2FPoints(const C2FPoints&) = default;
  C2FPoints& operator=(const C2FPoints&) = default;
  ~C2FPoints() override = default;

  /// Both points equal by CFPoint's inclusive 0.0001 bound.
  virtual int operator==(const C2FPoints& o) const { return pt1 == o.pt1 && pt2 == o.pt2; }
  virtual int operator!=(const C2FPoints& o) const { return !(*this == o); }
  virtual C2FPoints* clone() const { return new C2FPoints(*this); }
  /// Version word 1, then each point as a full CFPoint record.
  void Serialize(CArchive& ar) override;

  C2PointD ConvertToC2PointD() const { return {pt1.ConvertToCPointD(), pt2.ConvertToCPointD()}; }

  CFPoint pt1;
  CFPoint pt2;
};

class C2FPointsArray : public corlith::OwningPtrArray<C2FPointsArray, C2FPoints> {
 public:
  enum { m_nVersion = 1 };

  /// Deletes out's elements, then appends each pair converted to double (a null slot
  /// converts as the all-zero pair).
  void ConvertPointD(C2PointDArray& out) const;
};
