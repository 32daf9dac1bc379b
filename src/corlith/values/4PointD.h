// C4PointD, a fixed group of 4 points compared point by point with the shared
// tolerance, and C4PointDArray, its owning array.
#pragma once

#include <corlith/values/PointGroup.h>

class C4PointD : public corlith::PointGroup<C4PointD, 4> {
 public:
  C4PointD() = default;
  C4PointD(const CPointD& p1, const CPointD& p2, const CPointD& p3, const CPointD& p4) {
    SetData(p1, p2, p3, p4);
  }
  // Written out so that pt1 ... name this object's own points, not the source's.
  C4PointD(const C4PointD& o) : PointGroup(o) {}
  C4PointD& operator=(const C4PointD& o) {
    PointGroup::operator=(o);
    return *this;
  }
  ~C4PointD() override = default;

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
