// CUnitTolerance: the one comparison tolerance that CPointD's equality (and everything
// built on it) uses, shared by every process of the current user that has the library
// loaded, and the recognition of unit names.
//
// Sharing: a POSIX shared-memory segment named by the environment variable
// CORLITH_TOLERANCE_SHM (a "/name"), else "/corlith-tolerance-<uid>". One segment per
// user, not system-wide, deliberately: another user's process must not change this
// user's point equality. The first process creates it holding 0.0001; a segment left
// unready by a creator that died is taken over. When no segment can be had (no
// /dev/shm, a name owned by someone else), the tolerance silently becomes a value
// private to this process, also starting at 0.0001 (IsShared() tells).
#pragma once

#include <corlith/framework/String.h>

/// Unit types: 0 inch, 1 mil, 2 centimetre, 3 millimetre, 4 micron, -1 not recognised.
class CUnitTolerance {
 public:
  CUnitTolerance() = default;
  virtual ~CUnitTolerance() = default;

  /// The shared tolerance, read at the moment of the call.
  static double GetTolerance();
  /// Stores the value unchanged (no check: zero or negative makes every point unequal).
  static void SetTolerancewithValue(double dTolerance);
  /// Stores the unit type's tolerance, times dScale when dScale is not exactly 1.0.
  static void SetTolerance(const int& nUnitType, double dScale = 1.0);
  /// GetUnitType(strUnit), then the above (an unknown unit gives 0.0001 x dScale).
  static void SetTolerance(const CString& strUnit, double dScale = 1.0);
  /// One micrometre in the unit; the micron row is deliberately 0.1, not 1; any other
  /// type gives 0.0001. Does not touch the shared value.
  static double GetToleranceValue_By_UnitType(const int& nUnitType);
  /// Looks, upper-cased, for "MIL", "IN", "MM", "CM", "MICRO", "UM" in that order.
  /// Deliberate: MILLIMETER is therefore mil (1) and CENTIMETER is -1.
  static int GetUnitType(const CString& strUnit);

  /// Whether the tolerance is really shared (false after the process-local fallback).
  static bool IsShared();
};
