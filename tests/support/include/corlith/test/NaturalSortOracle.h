// Oracles for the natural order, written as plainly as the rules read, for differential
// tests and fuzz targets: the comparison with its collecting texts as real strings and
// atoi, and the insertion procedure with RemoveAt/InsertAt. Header-only; the includer
// links the text layer.
#pragma once

#include <corlith/framework/StringArray.h>
#include <corlith/text/LString.h>
#include <corlith/text/StringEx.h>

#include <string>

namespace corlith::test {

/// The natural order, rule by rule: 1 when a sorts before b.
inline int ReferenceCompare(const CString& a, const CString& b) {
  if (a.GetLength() < b.GetLength()) return ReferenceCompare(b, a) != 1 ? 1 : 0;
  std::string sa;
  std::string sb;
  int i = 0;
  while (i < b.GetLength()) {
    if (CStringSorter::IsNum(a[i]) && CStringSorter::IsNum(b[i])) {
      for (int j = i; j < a.GetLength() && CStringSorter::IsNum(a[j]); ++j) sa += a[j];
      for (; i < b.GetLength() && CStringSorter::IsNum(b[i]); ++i) sb += b[i];
      const int na = corlith::SaturatingAtoi(sa);
      const int nb = corlith::SaturatingAtoi(sb);
      if (na < nb) return 1;
      if (na > nb) return 0;
      if (sa.size() > sb.size()) return 1;
      if (sa.size() < sb.size()) return 0;
    } else {
      const auto ca = static_cast<signed char>(a[i]);
      const auto cb = static_cast<signed char>(b[i]);
      if (ca < cb) return 1;
      if (ca > cb) return 0;
    }
    ++i;
  }
  return 0;
}

/// The insertion procedure: for each index i from 1, element i moves to the first j
/// below i that it sorts before (by CompareStringA). Quadratic; for checking only.
inline void InsertionSortReference(CStringArray& array) {
  for (INT_PTR i = 1; i < array.GetSize(); ++i) {
    const CString element = array[i];
    for (INT_PTR j = 0; j < i; ++j) {
      if (CStringSorter::CompareStringA(element, array[j]) == 1) {
        array.RemoveAt(i);
        array.InsertAt(j, element);
        break;
      }
    }
  }
}

}  // namespace corlith::test
