#include <corlith/values/CircleF.h>

#include <cmath>

namespace {

double DistanceFrom(const CPointF& c, float x, float y) {
  const double dx = static_cast<double>(x) - c.x;
  const double dy = static_cast<double>(y) - c.y;
  return std::sqrt(dx * dx + dy * dy);
}

}  // namespace

void CCircleF::UnitChange(double dFactor) {
  center.UnitChange(dFactor);
  radius = static_cast<float>(radius * dFactor);
}

void CCircleF::Serialize(CArchive& ar) { corlith::SerializeFields(ar, nVersion, center, radius); }

bool CCircleF::PtInCircle(float x, float y) const { return DistanceFrom(center, x, y) < radius; }

bool CCircleF::IsNearPoint(float x, float y, float w) const {
  if (w > radius) return false;
  const double d = DistanceFrom(center, x, y);
  return !(d < static_cast<double>(radius) - w) && d < static_cast<double>(radius) + w;
}
