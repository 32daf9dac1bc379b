// Restores the shared unit tolerance when a test ends, so that a test changing it
// leaves the next one the value it found. Value layer: for the value tests and above.
#pragma once

#include <corlith/values/UnitTolerance.h>

namespace corlith::test {

class ToleranceGuard {
 public:
  ToleranceGuard() : m_saved(CUnitTolerance::GetTolerance()) {}
  ~ToleranceGuard() { CUnitTolerance::SetTolerancewithValue(m_saved); }
  ToleranceGuard(const ToleranceGuard&) = delete;
  ToleranceGuard& operator=(const ToleranceGuard&) = delete;

 private:
  double m_saved;
};

}  // namespace corlith::test
