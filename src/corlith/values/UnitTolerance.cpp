#include <corlith/platform/SharedMemory.h>
#include <corlith/values/UnitTolerance.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

constexpr double kInitialTolerance = 0.0001;

// Where the tolerance lives: the shared segment, or this process's own double when
// the segment cannot be had. Created on first use, never destroyed, so that value
// classes used from static destructors still compare.
class ToleranceStore {
 public:
  ToleranceStore() {
    const char* overridden = std::getenv("CORLITH_TOLERANCE_SHM");
    const std::string name = (overridden && *overridden)
                                 ? std::string(overridden)
                                 : corlith::platform::PerUserSharedMemoryName("corlith-tolerance");
    const int error =
        m_segment.Open(name, sizeof(double), [](void* data) { ::new (data) double(kInitialTolerance); });
    if (error == 0) m_value = static_cast<double*>(m_segment.Data());
  }

  double Get() const { return std::atomic_ref<double>(*m_value).load(std::memory_order_relaxed); }
  void Set(double value) { std::atomic_ref<double>(*m_value).store(value, std::memory_order_relaxed); }
  bool IsShared() const { return m_segment.IsOpen(); }

 private:
  corlith::platform::SharedMemory m_segment;
  alignas(std::atomic_ref<double>::required_alignment) double m_local = kInitialTolerance;
  double* m_value = &m_local;
};

ToleranceStore& Store() {
  static ToleranceStore* store = new ToleranceStore;
  return *store;
}

}  // namespace

double CUnitTolerance::GetTolerance() { return Store().Get(); }

void CUnitTolerance::SetTolerancewithValue(double dTolerance) { Store().Set(dTolerance); }

void CUnitTolerance::SetTolerance(const int& nUnitType, double dScale) {
  const double value = GetToleranceValue_By_UnitType(nUnitType);
  Store().Set(value);
  if (dScale != 1.0) Store().Set(value * dScale);
}

void CUnitTolerance::SetTolerance(const CString& strUnit, double dScale) {
  SetTolerance(GetUnitType(strUnit), dScale);
}

double CUnitTolerance::GetToleranceValue_By_UnitType(const int& nUnitType) {
  switch (nUnitType) {
    case 0:
      return 3.9370078740157485e-5;
    case 1:
      return 0.03937007874015749;
    case 2:
      return 0.0001;
    case 3:
      return 0.001;
    case 4:
      return 0.1;
    default:
      return kInitialTolerance;
  }
}

int CUnitTolerance::GetUnitType(const CString& strUnit) {
  CString upper = strUnit;
  upper.MakeUpper();
  struct Rule {
    const char* text;
    int type;
  };
  static constexpr Rule kRules[] = {{"MIL", 1}, {"IN", 0}, {"MM", 3}, {"CM", 2}, {"MICRO", 4}, {"UM", 4}};
  for (const Rule& rule : kRules) {
    if (upper.Find(rule.text) >= 0) return rule.type;
  }
  return -1;
}

bool CUnitTolerance::IsShared() { return Store().IsShared(); }
