// CPoint3D, a double point in space compared exactly (no tolerance, unlike CPointD),
// and CArrayPoint3D, its owning array.
#pragma once

#include <corlith/values/ExPtrArray.h>

class CPoint3D : public CObject {
 public:
  enum { m_nVersion = 1 };

  CPoint3D() = default;
  CPoint3D(double dx, double dy, double dz) : x(dx), y(dy), z(dz) {}
  CPoint3D(const CPoint3D&) = default;
  CPoint3D& operator=(const CPoint3D&) = default;
  ~CPoint3D() override = default;

  /// x, y and z exactly equal.
  virtual int operator==(const CPoint3D& p) const { return x == p.x && y == p.y && z == p.z; }
  virtual int operator!=(const CPoint3D& p) const { return !(*this == p); }
  /// Version word 1, x, y, z.
  void Serialize(CArchive& ar) override;
  virtual CPoint3D* clone() const { return new CPoint3D(*this); }
  /// Multiplies all three coordinates.
  virtual void UnitConvert(double dFactor) { x *= dFactor, y *= dFactor, z *= dFactor; }

  double GetX() const { return x; }
  double GetY() const { return y; }
  double GetZ() const { return z; }
  double& GetX() { return x; }
  double& GetY() { return y; }
  double& GetZ() { return z; }
  void SetX(double d) { x = d; }
  void SetY(double d) { y = d; }
  void SetZ(double d) { z = d; }
  void SetData(double dx, double dy, double dz) { x = dx, y = dy, z = dz; }
  void GetData(double& dx, double& dy, double& dz) const { dx = x, dy = y, dz = z; }
  void Init() { x = y = z = 0.0; }

  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
};

class CArrayPoint3D : public corlith::OwningPtrArray<CArrayPoint3D, CPoint3D> {
 public:
  enum { m_nVersion = 1 };
  void UnitConvert(double dFactor) {
    for (CPoint3D* p : *this)
      if (p) p->UnitConvert(dFactor);
  }
};
