// C5PointD, a fixed group of 5 points compared point by point with the shared
// tolerance, and C5PointDArray, its owning array.
#pragma once

#include <corlith/values/PointGroup.h>

#include <algorithm>

class C5PointD : public CObject {
 public:
  enum { m_nVersion = 1 };

  C5PointD() = default;
  C5PointD(const CPointD& p1, const CPointD& p2, const CPointD& p3, const CPointD& p4, const CPointD& p5) {
    SetData(p1, p2, p3, p4, p5);
  }
  C5PointD(const C5PointD& o) : CObject(o) { std::copy(o.m_pts, o.m_pts + 5, m_pts); }
  C5PointD& operator=(const C5PointD& o) {
    if (this != &o) std::copy(o.m_pts, o.m_pts + 5, m_pts);
    return *this;
  }
  ~C5PointD() override = default;

  /// The same object, or every pair of corresponding points tolerant-equal.
  virtual int operator==(const C5PointD& o) const { return corlith::pointgroup::Equal(m_pts, o.m_pts); }
  virtual int operator!=(const C5PointD& o) const { return !(*this == o); }
  /// Version word 1, then each point as a full CPointD record, in order.
  void Serialize(CArchive& ar) override { corlith::pointgroup::Serialize(ar, m_pts); }
  virtual C5PointD* clone() const { return new C5PointD(*this); }

  const CPointD& GetPt1() const { return m_pts[0]; }
  void SetPt1(const CPointD& p) { m_pts[0] = p; }
  const CPointD& GetPt2() const { return m_pts[1]; }
  void SetPt2(const CPointD& p) { m_pts[1] = p; }
  const CPointD& GetPt3() const { return m_pts[2]; }
  void SetPt3(const CPointD& p) { m_pts[2] = p; }
  const CPointD& GetPt4() const { return m_pts[3]; }
  void SetPt4(const CPointD& p) { m_pts[3] = p; }
  const CPointD& GetPt5() const { return m_pts[4]; }
  void SetPt5(const CPointD& p) { m_pts[4] = p; }
  void SetData(const CPointD& p1, const CPointD& p2, const CPointD& p3, const CPointD& p4,
               const CPointD& p5) {
    m_pts[0] = p1, m_pts[1] = p2, m_pts[2] = p3, m_pts[3] = p4, m_pts[4] = p5;
  }
  /// The first of the 5 contiguous points.
  CPointD* Get5Points() { return m_pts; }
  const CPointD* Get5Points() const { return m_pts; }
  void Init() { std::fill(m_pts, m_pts + 5, CPointD()); }

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
  CPointD m_pts[5];

 public:
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
