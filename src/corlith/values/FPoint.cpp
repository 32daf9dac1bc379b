#include <corlith/values/FPoint.h>

#include <cmath>

CFPoint CFPoint::Rotation(float fDegrees) {
  const double angle = fDegrees / 180.0 * 3.141592;
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  const double nx = x * c - y * s;
  const double ny = x * s + y * c;
  x = static_cast<float>(nx);
  y = static_cast<float>(ny);
  return *this;
}

int CFPoint::operator==(const CFPoint& p) const {
  return std::fabs(static_cast<double>(x) - p.x) <= 0.0001 &&
         std::fabs(static_cast<double>(y) - p.y) <= 0.0001;
}

void CFPoint::Serialize(CArchive& ar) { corlith::SerializeFields(ar, m_nVersion, x, y); }

void C2FPoints::Serialize(CArchive& ar) { corlith::SerializeFields(ar, m_nVersion, pt1, pt2); }

void C2FPointsArray::ConvertPointD(C2PointDArray& out) const {
  out.DeleteAll();
  const C2FPoints zero;
  for (const C2FPoints* p : *this) {
    auto converted = std::make_unique<C2PointD>((p ? *p : zero).ConvertToC2PointD());
    out.Add(converted.get());
    static_cast<void>(converted.release());  // out owns it now
  }
}
