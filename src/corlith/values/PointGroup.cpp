#include <corlith/values/PointGroup.h>

#include <algorithm>

namespace corlith::pointgroup {

bool Equal(std::span<const CPointD> a, std::span<const CPointD> b) {
  if (a.data() == b.data()) return true;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i] != b[i]) return false;
  }
  return true;
}

int ClosestIndex(std::span<const CPointD> pts, const CPointD& p) {
  int best = 0;
  double bestDistance = pts[0].DistanceToPoint(p);
  for (std::size_t i = 1; i < pts.size(); ++i) {
    const double d = pts[i].DistanceToPoint(p);
    if (d < bestDistance) {
      bestDistance = d;
      best = static_cast<int>(i);
    }
  }
  return best;
}

CRectD Bounds(std::span<const CPointD> pts) {
  double minX = pts[0].x, maxX = pts[0].x, minY = pts[0].y, maxY = pts[0].y;
  for (const CPointD& p : pts.subspan(1)) {
    minX = std::min(minX, p.x);
    maxX = std::max(maxX, p.x);
    minY = std::min(minY, p.y);
    maxY = std::max(maxY, p.y);
  }
  return CRectD(minX, maxY, maxX - minX, maxY - minY);
}

void Serialize(CArchive& ar, std::span<CPointD> pts) {
  if (ar.IsStoring()) {
    StoreVersion(ar, 1);
  } else if (!LoadVersion(ar, 1)) {
    return;
  }
  for (CPointD& p : pts) p.Serialize(ar);
}

}  // namespace corlith::pointgroup
