#include <corlith/values/PointN.h>

#include <corlith/framework/Numeric.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace {

int WrappingSub(int a, int b) {
  return static_cast<int>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

}  // namespace

void CPointN::Serialize(CArchive& ar) { corlith::SerializeFields(ar, m_nVersion, x, y); }

void CPointN::Rotate(double dDegrees) {
  const double a = dDegrees / 180.0 * 3.141592;
  const double c = std::cos(a);
  const double s = std::sin(a);
  const double ox = x;
  const double oy = y;
  x = corlith::TruncateClamped<int>(ox * c - oy * s);
  y = corlith::TruncateClamped<int>(ox * s + oy * c);
}

void CPointN::MoveRotate(int dx, int dy, double dDegrees) {
  Rotate(dDegrees);
  x = WrappingSub(x, dx);
  y = WrappingSub(y, dy);
}
