// C4PointD, a fixed group of 4 points compared point by point with the shared
// tolerance, and C4PointDArray, its owning array.
#pragma once

#include <corlith/values/PointGroup.h>

#include <algorithm>

class C4PointD : public CObject {
 public:
  enum { m_nVersion = 1 };

  C4PointD() = default;
  C4PointD(const CPointD& p1, const CPointD& p2, const CPointD& p3, const CPointD& p4) {
    SetData(p1, p2, p3, p4);
  }
  C4PointD(const C4PointD& o) : CObject(o) { std::copy(o.m_pts, o.m_pts + 4, m_pts); }
  C4PointD& operator=(const C4PointD& o) {
    if (this != &o) std::copy(o.m_pts, o.m_pts + 4, m_pts);
    return *this;
  }
  ~C4PointD() override = default;

  /// The same object, or every pair of corresponding points tolerant-equal.
  virtual int operator==(const C4PointD& o) const { return corlith::pointgroup::Equal(m_pts, o.m_pts); }
  virtual int operator!=(const C4PointD& o) const { return !(*this == o); }
  /// Version word 1, then each point as a full CPointD record, in order.
  void Serialize(CArchive& ar) override { corlith::pointgroup::Serialize(ar, m_pts); }
  virtual C4PointD* clone() const { return new C4PointD(*this); }

  const CPointD& GetPt1() const { return m_pts[0]; }
  void SetPt1(const CPointD& p) { m_pts[0] = p; }
  const CPointD& GetPt2() const { return m_pts[1]; }
  void SetPt2(const CPointD& p) { m_pts[1] = p; }
  const CPointD& GetPt3() const { return m_pts[2]; }
  void SetPt3(const CPointD& p) { m_pts[2] = p; }
  const CPointD& GetPt4() const { return m_pts[3]; }
  void SetPt4(const CPointD& p) { m_pts[3] = p; }
  void SetData(const CPointD& p1, const CPointD& p2, const CPointD& p3, const CPointD& p4) {
    m_pts[0] = p1, m_pts[1] = p2, m_pts[2] = p3, m_pts[3] = p4;
  }
  /// pt1 = left-top, pt2 = left-bottom, pt3 = right-bottom, pt4 = right-top.
  void SetData(const CRectD& r);
  /// All four points tolerant-equal in a chain: the quadrilateral collapsed to a point.
  BOOL IsNULL() const { return pt1 == pt2 && pt2 == pt3 && pt3 == pt4; }
  /// The first of the 4 contiguous points.
  CPointD* Get4Points() { return m_pts; }
  const CPointD* Get4Points() const { return m_pts; }
  void Init() { std::fill(m_pts, m_pts + 4, CPointD()); }

  /// 0-based index of the nearest point; on a tie the earlier index.
  int GetClosestPtIndexFrom(const CPointD& p) const { return corlith::pointgroup::ClosestIndex(m_pts, p); }
  /// Bounding rectangle: left = smallest x, top = largest y.
  CRectD GetRectD() const { return corlith::pointgroup::Bounds(m_pts); }
  /// As CPointD::Mirror on every point (0 negates y, 1 negates x).
  void Mirror(int nAxis) { corlith::pointgroup::Mirror(m_pts, nAxis); }
  /// As CPointD::MirrorOfAxis on every point (0 negates x, 1 negates y).
  void MirrorOfAxis(int nAxis) { corlith::pointgroup::MirrorOfAxis(m_pts, nAxis); }
  /// Rotates every point about the origin when the angle is not 0, then adds (dx, dy).
  void Translate(double dx, double dy, double dDegrees) {
    corlith::pointgroup::Translate(m_pts, dx, dy, dDegrees);
  }

 private:
  CPointD m_pts[4];

 public:
  /// The points by name; they alias the contiguous storage.
  CPointD& pt1 = m_pts[0];
  CPointD& pt2 = m_pts[1];
  CPointD& pt3 = m_pts[2];
  CPointD& pt4 = m_pts[3];
};

class C4PointDArray : public corlith::OwningPtrArray<C4PointDArray, C4PointD> {
 public:
  enum { m_nVersion = 1 };
  /// Applied to every element.
  void Mirror(int nAxis);
  void MirrorOfAxis(int nAxis);
  void Translate(double dx, double dy, double dDegrees);
};
