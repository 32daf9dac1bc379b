#include <corlith/values/2PointD.h>

#include <cmath>

void C2PointD::Serialize(CArchive& ar) { corlith::SerializeFields(ar, m_nVersion, pt1, pt2); }

double C2PointD::GetSquareDistance() const {
  const double dx = pt1.x - pt2.x;
  const double dy = pt1.y - pt2.y;
  return dx * dx + dy * dy;
}

double C2PointD::GetDiatance() const { return std::sqrt(GetSquareDistance()); }

double C2PointDArray::SumElementDistances() const {
  double sum = 0.0;
  for (const C2PointD* p : *this)
    if (p) sum += p->GetDiatance();
  return sum;
}

double C2PointDArray::SumElementSquareDistances() const {
  double sum = 0.0;
  for (const C2PointD* p : *this)
    if (p) sum += p->GetSquareDistance();
  return sum;
}

void C2PointDArray::UnitConvert(double dFactor) {
  for (C2PointD* p : *this)
    if (p) p->UnitConvert(dFactor);
}
