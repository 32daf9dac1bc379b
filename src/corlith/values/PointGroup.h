// What C4PointD and C5PointD share: N contiguous points compared point by point with
// the shared tolerance, stored as one record, and moved as one. PointGroup holds the
// points and these members once; each group names its points (pt1 ...) and adds its own.
#pragma once

#include <corlith/values/RectD.h>

#include <algorithm>
#include <span>

namespace corlith {

namespace pointgroup {

/// Every pair of corresponding points tolerant-equal.
bool Equal(std::span<const CPointD> a, std::span<const CPointD> b);
/// Index of the point nearest p; on a tie the earlier index is kept.
int ClosestIndex(std::span<const CPointD> pts, const CPointD& p);
/// Bounding rectangle: left = min x, top = max y.
CRectD Bounds(std::span<const CPointD> pts);
/// Version word 1, then each point as a full CPointD record.
void Serialize(CArchive& ar, std::span<CPointD> pts);

}  // namespace pointgroup

template <class Derived, int N>
class PointGroup : public CObject {
  static_assert(N >= 4, "the groups have at least GetPt1 ... GetPt4");

 public:
  enum { m_nVersion = 1 };

  PointGroup() = default;
  PointGroup(const PointGroup& o) : CObject(o) { std::copy(o.m_pts, o.m_pts + N, m_pts); }
  PointGroup& operator=(const PointGroup& o) {
    if (this != &o) std::copy(o.m_pts, o.m_pts + N, m_pts);
    return *this;
  }
  ~PointGroup() override = default;

  /// The same object, or every pair of corresponding points tolerant-equal.
  virtual int operator==(const Derived& o) const {
    return pointgroup::Equal(m_pts, static_cast<const PointGroup&>(o).m_pts);
  }
  virtual int operator!=(const Derived& o) const { return !operator==(o); }
  /// Version word 1, then each point as a full CPointD record, in order.
  void Serialize(CArchive& ar) override { pointgroup::Serialize(ar, m_pts); }
  virtual Derived* clone() const { return new Derived(static_cast<const Derived&>(*this)); }

  const CPointD& GetPt1() const { return m_pts[0]; }
  void SetPt1(const CPointD& p) { m_pts[0] = p; }
  const CPointD& GetPt2() const { return m_pts[1]; }
  void SetPt2(const CPointD& p) { m_pts[1] = p; }
  const CPointD& GetPt3() const { return m_pts[2]; }
  void SetPt3(const CPointD& p) { m_pts[2] = p; }
  const CPointD& GetPt4() const { return m_pts[3]; }
  void SetPt4(const CPointD& p) { m_pts[3] = p; }
  void Init() { std::fill(m_pts, m_pts + N, CPointD()); }

  /// 0-based index of the nearest point; on a tie the earlier index.
  int GetClosestPtIndexFrom(const CPointD& p) const { return pointgroup::ClosestIndex(m_pts, p); }
  /// Bounding rectangle: left = smallest x, top = largest y.
  CRectD GetRectD() const { return pointgroup::Bounds(m_pts); }
  /// As CPointD::Mirror on every point (0 negates y, 1 negates x).
  void Mirror(int nAxis) {
    for (CPointD& p : m_pts) p.Mirror(nAxis);
  }
  /// As CPointD::MirrorOfAxis on every point (0 negates x, 1 negates y).
  void MirrorOfAxis(int nAxis) {
    for (CPointD& p : m_pts) p.MirrorOfAxis(nAxis);
  }
  /// Rotates every point about the origin when the angle is not 0, then adds (dx, dy).
  void Translate(double dx, double dy, double dDegrees) {
    for (CPointD& p : m_pts) p.Translate(dx, dy, dDegrees);
  }

 protected:
  CPointD m_pts[N];
};

}  // namespace corlith
