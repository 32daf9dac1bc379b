#include <corlith/values/PointD.h>
#include <corlith/values/PointF.h>
#include <corlith/values/SortSupport.h>
#include <corlith/values/UnitTolerance.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr double kPi = 3.141592653589793;

int Sign(double d) { return d < 0 ? -1 : (d > 0 ? 1 : 0); }

const CPointD& P(const void* p) { return *static_cast<const CPointD*>(p); }

}  // namespace

int CPointD::operator==(const CPointD& p) const {
  const double t = CUnitTolerance::GetTolerance();
  const double dx = x - p.x;
  const double dy = y - p.y;
  return t * t > dx * dx + dy * dy;
}

int CPointD::IsMathEqual(const CPointD& p) const {
  return std::fabs(x - p.x) < 0.0001 && std::fabs(y - p.y) < 0.0001;
}

double CPointD::DistanceToPoint(const CPointD& p) const {
  return std::sqrt((x - p.x) * (x - p.x) + (y - p.y) * (y - p.y));
}

BOOL CPointD::PtInRect(const CPointD& a, const CPointD& b) const {
  return std::min(a.x, b.x) <= x && x <= std::max(a.x, b.x) && std::min(a.y, b.y) <= y &&
         y <= std::max(a.y, b.y);
}

void CPointD::Mirror(int nAxis) {
  if (nAxis == 0) y = -y;
  if (nAxis == 1) x = -x;
}

void CPointD::MirrorOfAxis(int nAxis) {
  if (nAxis == 0) x = -x;
  if (nAxis == 1) y = -y;
}

void CPointD::Rotate(double dDegrees) {
  const double a = dDegrees * kPi / 180.0;
  const double c = std::cos(a);
  const double s = std::sin(a);
  const double ox = x;
  const double oy = y;
  x = ox * c - oy * s;
  y = ox * s + oy * c;
}

void CPointD::Translate(double dx, double dy, double dDegrees) {
  if (dDegrees != 0.0) Rotate(dDegrees);
  x += dx;
  y += dy;
}

void CPointD::MoveRotate(double dx, double dy, double dDegrees) {
  Rotate(dDegrees);
  x -= dx;
  y -= dy;
}

BOOL CArrayPointD::IsExist(double dx, double dy) const {
  return std::any_of(begin(), end(), [&](const CPointD& p) { return p.x == dx && p.y == dy; });
}

void CArrayPointD::Sort(const int& nAscending, int nAxis) {
  if (nAxis != 0 && nAxis != 1) return;
  int (*compare)(const void*, const void*) =
      nAscending ? (nAxis == 0 ? CompareForAscendingX : CompareForAscendingY)
                 : (nAxis == 0 ? CompareForDescendingX : CompareForDescendingY);
  // Not qsort: CPointD has a virtual table, so its bytes may not be moved around
  // blindly. Our merge sort also stays in bounds when NaN coordinates make the order
  // inconsistent, which no standard sort promises.
  corlith::MergeSort(GetData(), static_cast<std::size_t>(GetSize()),
                     [compare](const CPointD& a, const CPointD& b) { return compare(&a, &b); });
}

void CArrayPointD::UnitConvert(double dFactor) {
  for (CPointD& p : *this) p.UnitConvert(dFactor);
}

int CArrayPointD::CompareForAscendingX(const void* a, const void* b) {
  const CPointD& p = P(a);
  const CPointD& q = P(b);
  return p.x != q.x ? Sign(p.x - q.x) : Sign(p.y - q.y);
}

int CArrayPointD::CompareForAscendingY(const void* a, const void* b) {
  const CPointD& p = P(a);
  const CPointD& q = P(b);
  return p.y != q.y ? Sign(p.y - q.y) : Sign(p.x - q.x);
}

int CArrayPointD::CompareForDescendingX(const void* a, const void* b) { return -CompareForAscendingX(a, b); }

int CArrayPointD::CompareForDescendingY(const void* a, const void* b) { return -CompareForAscendingY(a, b); }

CPointD::CPointD(const CPointF& p) : x(p.x), y(p.y) {}

CPointD& CPointD::operator=(const CPointF& p) {
  x = p.x;
  y = p.y;
  return *this;
}
