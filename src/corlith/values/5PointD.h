// C5PointD, a fixed group of 5 points compared point by point with the shared
// tolerance, and C5PointDArray, its owning array.
#pragma once

#include <corlith/values/PointGroup.h>

class C5PointD : public corlith::PointGroup<C5PointD, 5> {
 public:
  C5PointD() = default;
  C5PointD(const CPointD& p1, const CPointD& p2, const CPointD& p3, const CPointD& p4, const CPointD& p5) {
    SetData(p1, p2, p3, p4, p5);
  }
  // Written out so that pt1 ... name this object's own points, not the source's.
  C5PointD(const C5PointD& o) : PointGroup(o) {}
  C5PointD& operator=(const C5PointD& o) {
    PointGroup::operator=(o);
    return *this;
  }
  ~C5PointD() override = default;

  const CPointD& GetPt5() const { return m_pts[4]; }
  void SetPt5(const CPointD& p) { m_pts[4] = p; }
  void SetData(const CPointD& p1, const CPointD& p2, const CPointD& p3, const CPointD& p4,
               const CPointD& p5) {
    m_pts[0] = p1, m_pts[1] = p2, m_pts[2] = p3, m_pts[3] = p4, m_pts[4] = p5;
  }
  /// The first of the 5 contiguous points.
  CPointD* Get5Points() { return m_pts; }
  const CPointD* Get5Points() const { return m_pts; }

  /// The points by name; they alias the contiguous storage.
  CPointD& pt1 = m_pts[0];
  CPointD& pt2 = m_pts[1];
  CPointD& pt3 = m_pts[2];
  CPointD& pt4 = m_pts[3];
  CPointD& pt5 = m_pts[4];
};

class C5PointDArray : public corlith::OwningPtrArray<C5PointDArray, C5PointD> {
 public:
  enum { m_nVersion = 1 };
  /// Stores in the pointer-array form, but loading first skips one 4-byte word, so a
  /// stored array reads back empty (the count's low half is taken as the header).
  /// Deliberate: streams written by hosts depend on both sides as they are.
  void Serialize(CArchive& ar) override;
};
