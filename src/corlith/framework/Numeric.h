// Conversions of floating values to integers that the original did with a plain cast:
// defined for every input here, where an out-of-range cast would be undefined.
#pragma once

#include <cmath>
#include <concepts>
#include <limits>

namespace corlith {

/// Truncates toward zero and clamps to T's range; NaN gives 0.
template <std::integral T>
constexpr T TruncateClamped(double v) {
  if (std::isnan(v)) return 0;
  constexpr double lowest = static_cast<double>(std::numeric_limits<T>::min());
  // 2^digits is the first value above T's maximum and, unlike the maximum itself, is
  // exactly representable as a double.
  constexpr double aboveMax = static_cast<double>((std::numeric_limits<T>::max() >> 1) + 1) * 2.0;
  if (v >= aboveMax) return std::numeric_limits<T>::max();
  if (v <= lowest) return std::numeric_limits<T>::min();
  return static_cast<T>(v);
}

}  // namespace corlith
