// The family around the framework's CDWordArray: CDWordArrayEx (content comparisons),
// CDWordArrayArray and CDWordArrayArrayArray (owning nestings; the inner arrays keep the
// framework's own CDWordArray form) and CDWordArraySet (owning, unique by content).
#pragma once

#include <corlith/framework/StringArray.h>
#include <corlith/values/ExPtrArray.h>

class CDWordArrayEx {
 public:
  /// Equal counts and equal elements in order; two empty arrays are the same.
  static BOOL IsSameData(const CDWordArray& a, const CDWordArray& b);
  /// False unless both arrays have more than n elements; true when n < 0; otherwise
  /// elements 0 to n inclusive (n + 1 of them) equal.
  static BOOL IsSameData(const CDWordArray& a, const CDWordArray& b, int n);
};

class CDWordArrayArray : public corlith::OwningPtrArray<CDWordArrayArray, CDWordArray> {
 public:
  enum { m_nVersion = 1 };

  /// Appends a deep copy of each inner array of other; the current content is kept
  /// (deliberately not cleared first).
  void Copy(const CDWordArrayArray& other);
  /// Does nothing (kept for hosts that call it).
  void Trace() const {}
};

class CDWordArrayArrayArray : public corlith::OwningPtrArray<CDWordArrayArrayArray, CDWordArrayArray> {
 public:
  enum { m_nVersion = 1 };

  /// Appends a deep copy of each element of other; the current content is kept.
  void Copy(const CDWordArrayArrayArray& other);
};

/// IsExist and Add scan the held arrays: the set hands out its elements as mutable
/// pointers, and an array changed in place through one is a change no index beside the
/// set could see (see CStringPairSet).
class CDWordArraySet : public corlith::OwningPtrArray<CDWordArraySet, CDWordArray> {
 public:
  enum { m_nVersion = 1 };

  /// Some held array has the same data (two-argument IsSameData).
  BOOL IsExist(const CDWordArray* p) const;
  /// Appends p and takes ownership only when no held array has the same data; otherwise
  /// nothing is stored, the caller keeps p, and the result is 0 (also for a null p).
  BOOL Add(CDWordArray* p);
};
