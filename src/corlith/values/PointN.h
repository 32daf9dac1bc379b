// CPointN, the framework's integer point with a virtual table and an archive form;
// CArrayPointN, its value array; CArrayPointN_Array, an owning array of those.
#pragma once

#include <corlith/framework/Geometry.h>
#include <corlith/values/ExPtrArray.h>

class CPointN : public CObject, public CPoint {
 public:
  enum { m_nVersion = 1 };

  CPointN() = default;
  CPointN(int nx, int ny) : CPoint(nx, ny) {}
  CPointN(const CPointN&) = default;
  CPointN& operator=(const CPointN&) = default;
  ~CPointN() override = default;

  virtual int operator==(const CPointN& p) const { return x == p.x && y == p.y; }
  virtual int operator!=(const CPointN& p) const { return !(*this == p); }
  /// Version word 1, x and y as 4-byte ints.
  void Serialize(CArchive& ar) override;
  virtual CPointN* clone() const { return new CPointN(*this); }

  int GetX() const { return x; }
  int GetY() const { return y; }
  void SetX(int n) { x = n; }
  void SetY(int n) { y = n; }
  void Init() { x = y = 0; }
  /// Computes in double with pi taken as 3.141592 (deliberately shorter than for
  /// CPointD) and truncates toward zero: (10, 0) by 90 gives (0, 9). Results beyond the
  /// int range are clamped, NaN gives 0.
  void Rotate(double dDegrees);
  /// Rotates, then subtracts (dx, dy) (integer arithmetic wraps).
  void MoveRotate(int dx, int dy, double dDegrees);
};

class CArrayPointN : public corlith::ValueArray<CArrayPointN, CPointN> {
 public:
  enum { m_nVersion = 1 };
};

class CArrayPointN_Array : public corlith::OwningPtrArray<CArrayPointN_Array, CArrayPointN> {};
