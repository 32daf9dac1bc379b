#include <corlith/values/PointD.h>
#include <corlith/values/PointF.h>

CPointF& CPointF::operator=(const CPointD& p) {
  x = static_cast<float>(p.x);
  y = static_cast<float>(p.y);
  return *this;
}

void CPointF::Serialize(CArchive& ar) { corlith::SerializeFields(ar, m_nVersion, x, y); }

void CPointF::UnitChange(const double& f) {
  x = static_cast<float>(x * f);
  y = static_cast<float>(y * f);
}
