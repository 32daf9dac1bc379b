// The numeric arrays: doubles (CArrayD), ints (CArrayN, CNArrayL, CArrayNL), BOOLs
// (CArrayB), floats (CArrayF), integer points (CArrayPoint), the value arrays of arrays
// (CArrayArrayD/N/B) and the owning CExPtrArrayArrayN. The serialisable ones use the
// array form of ArchiveConventions.h, except CNArrayL, which keeps an older form.
#pragma once

#include <corlith/framework/Geometry.h>
#include <corlith/values/ExPtrArray.h>

class CArrayD : public corlith::ValueArray<CArrayD, double, double> {
 public:
  enum { m_nVersion = 1 };

  /// Ascending when nAscending != 0. Stable: values that compare equal (0.0 and -0.0)
  /// keep their order. NaN compares equal to everything, so the order around it is
  /// unspecified; every value is kept all the same.
  void Sort(const int& nAscending);
  /// Index of the smallest value, the first on ties. Throws CInvalidArgException when
  /// empty (deliberately not a sentinel).
  int GetMinElementIndex() const;
  /// Left-to-right sum; 0.0 when empty.
  double SumTotal() const;

  /// Three-way comparators over const double*: the sign of a - b (0 for NaN), and reversed.
  static int CompareForAscending(const void* a, const void* b);
  static int CompareForDescending(const void* a, const void* b);
};

class CArrayN : public corlith::ValueArray<CArrayN, int, int> {
 public:
  enum { m_nVersion = 1 };

  BOOL IsExist(int n) const;
  /// 0 and nothing added when n is present; else appends it and returns 1.
  BOOL AddNotDuplication(int n);
  /// Appends n only when it is absent.
  void Add_in_SetMode(const int& n);
  /// Removes every occurrence of n.
  void Remove(const int& n);
  /// Keeps the first occurrence of each value, in order.
  void RemoveDuplicateElements();
  /// The largest value; -2147483648 when empty.
  int GetMaxVal() const;
  /// The 32-bit sum (wraps on overflow, as the original's int sum did).
  int SumTotal() const;
  void Sort(const int& nAscending);

  /// The sign of the wrapped 32-bit difference a - b over const int*: deliberately
  /// misorders operands more than 2^31 apart, as the original's comparators did.
  static int CompareForAscending(const void* a, const void* b);
  static int CompareForDescending(const void* a, const void* b);
};

class CArrayB : public corlith::ValueArray<CArrayB, BOOL, BOOL> {
 public:
  enum { m_nVersion = 1 };
};

/// Copy and assignment only: no archive form of its own (the framework array's applies).
class CArrayF : public CArray<float, float> {
 public:
  enum { m_nVersion = 1 };
};
/// Copy and assignment only: no archive form of its own (the framework array's applies).
class CArrayNL : public CArray<int, int> {
 public:
  enum { m_nVersion = 1 };
};
/// Copy and assignment only: no archive form of its own (the framework array's applies).
class CArrayPoint : public CArray<CPoint, const CPoint&> {
 public:
  enum { m_nVersion = 1 };
};

class CNArrayL : public CArray<int, int> {
 public:
  enum { m_nVersion = 1 };

  /// The largest value; -2147483648 when empty.
  int GetMaxVal() const;
  /// The smallest value; 2147483647 when empty.
  int GetMinVal() const;
  void Sort(int nAscending);
  /// The sign of the wrapped 32-bit difference (deliberately overflowing, as CArrayN's).
  static int Compare4Ascending(const void* a, const void* b);
  static int Compare4Descending(const void* a, const void* b);

  virtual int operator==(const CNArrayL& other) const;
  virtual int operator!=(const CNArrayL& other) const { return !(*this == other); }
  virtual CNArrayL* clone() const { return new CNArrayL(*this); }
  /// The older form: version word 1 (no top bit), a 4-byte count, the 4-byte values.
  /// Loading empties the array and stops on any other version word (0x80000001
  /// included) or a count below 1.
  void Serialize(CArchive& ar) override;
};

class CArrayArrayD : public corlith::ValueArray<CArrayArrayD, CArrayD> {
 public:
  enum { m_nVersion = 1 };
};
class CArrayArrayN : public corlith::ValueArray<CArrayArrayN, CArrayN> {
 public:
  enum { m_nVersion = 1 };
};
class CArrayArrayB : public corlith::ValueArray<CArrayArrayB, CArrayB> {
 public:
  enum { m_nVersion = 1 };
};
class CExPtrArrayArrayN : public corlith::OwningPtrArray<CExPtrArrayArrayN, CArrayN> {
 public:
  enum { m_nVersion = 1 };
};
