#include <corlith/ui/LGrid.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <system_error>

namespace {

// Kept as the two separate steps (whole part, then the remainder against half a pitch)
// rather than std::round(c / g): the results differ where the division rounds, and the
// grid's users depend on these exact results. The whole part stays a double so that a
// coordinate far beyond the int range cannot overflow.
double SnapCoordinate(double c, double g) {
  const double magnitude = std::fabs(c);
  double n = std::trunc(magnitude / g);
  if (std::fmod(magnitude, g) > g / 2) n += 1.0;
  const double snapped = n * g;
  return c < 0 ? -snapped : snapped;
}

double SquaredDistance(const CPointD& a, const CPointD& b) {
  const double dx = a.x - b.x;
  const double dy = a.y - b.y;
  return dx * dx + dy * dy;
}

// Written with std::to_chars and read back with std::from_chars: neither depends on the
// C locale, which a wx application may have set to one with a decimal comma.
int DecimalPlaces(double pitch, double tolerance) {
  if (!std::isfinite(pitch)) return 0;
  const double magnitude = std::fabs(pitch);
  // The largest double written out whole has 309 digits.
  std::array<char, 400> text{};
  for (int places = 0; places <= CLGrid::kMaxGridDecimalPoint; ++places) {
    const auto written =
        std::to_chars(text.data(), text.data() + text.size(), magnitude, std::chars_format::fixed, places);
    if (written.ec != std::errc{}) continue;
    double back = 0.0;
    const auto read = std::from_chars(text.data(), written.ptr, back);
    if (read.ec != std::errc{}) continue;
    if (back == magnitude || std::fabs(back - magnitude) <= tolerance) return places;
  }
  return CLGrid::kMaxGridDecimalPoint;
}

}  // namespace

CPointD CLGrid::GetSnapPoint(const CPointD& p) const {
  if (m_dPitchX == 0.0 || m_dPitchY == 0.0) return {};
  return {SnapCoordinate(p.x, m_dPitchX), SnapCoordinate(p.y, m_dPitchY)};
}

CPointD CLGrid::GetSnapPointAngle(const CPointD& ref, const CPointD& p, const double& /*dAngle*/) const {
  if (m_dPitchX == 0.0 || m_dPitchY == 0.0) return p;
  const double sx = SnapCoordinate(p.x, m_dPitchX);
  const double sy = SnapCoordinate(p.y, m_dPitchY);
  if (p.x == ref.x) return {p.x, sy};
  if (p.y == ref.y) return {sx, p.y};
  const double m = (p.y - ref.y) / (p.x - ref.x);
  const double b = ref.y - m * ref.x;
  const CPointD keepX(sx, m * sx + b);
  const CPointD keepY((sy - b) / m, sy);
  return SquaredDistance(keepY, p) > SquaredDistance(keepX, p) ? keepX : keepY;
}

void CLGrid::GetPreDefinedGridIntervalList(CArrayD& list, int unit) {
  constexpr double kMillimetreInInches = 0.03937007874015748;
  constexpr double kMillimetreInMils = 39.37007874015748;
  constexpr std::array kFactors{1.5, 1.27, 1.0, 0.8, 0.75, 0.65, 0.5, 0.4, 0.3, 0.25, 0.1};
  const double base = unit == 0 ? kMillimetreInInches : unit == 1 ? kMillimetreInMils : 1.0;
  for (const double factor : kFactors) list.Add(base * factor);
}

int CLGrid::GetGridDecimalPoint(int& nDecimalX, int& nDecimalY) const {
  nDecimalX = DecimalPlaces(m_dPitchX, m_dDecimalTolerance);
  nDecimalY = DecimalPlaces(m_dPitchY, m_dDecimalTolerance);
  return std::max(nDecimalX, nDecimalY);
}
