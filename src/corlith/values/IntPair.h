// Pairs keyed by an int: CIntPair (two ints), CIntDoublePair, CIntStringPair, and their
// owning arrays with look-ups by one member (CIntPairArray, CIntPairArrayArray,
// CIntDoublePairArray, CIntStringPairArray). Look-ups that return a value give
// -2147483648 when nothing matches; index look-ups give -1.
#pragma once

#include <corlith/framework/String.h>
#include <corlith/values/ExPtrArray.h>

class CIntPair : public CObject {
 public:
  enum { m_nVersion = 1 };

  CIntPair() = default;
  CIntPair(int n1, int n2) : integer1(n1), integer2(n2) {}
  CIntPair(const CIntPair&) = default;
  CIntPair& operator=(const CIntPair&) = default;
  ~CIntPair() override = default;

  /// Both ints equal, in order.
  virtual int operator==(const CIntPair& o) const { return integer1 == o.integer1 && integer2 == o.integer2; }
  virtual int operator!=(const CIntPair& o) const { return !(*this == o); }
  virtual CIntPair* clone() const { return new CIntPair(*this); }
  /// Version word 1, integer1, integer2.
  void Serialize(CArchive& ar) override;

  int GetInteger1() const { return integer1; }
  int GetInteger2() const { return integer2; }
  int& GetInteger1() { return integer1; }
  int& GetInteger2() { return integer2; }
  void SetInteger1(int n) { integer1 = n; }
  void SetInteger2(int n) { integer2 = n; }
  void SetData(int n1, int n2) { integer1 = n1, integer2 = n2; }

  int integer1 = 0;
  int integer2 = 0;
};

class CIntDoublePair : public CObject {
 public:
  enum { m_nVersion = 1 };

  CIntDoublePair() = default;
  CIntDoublePair(int n, double d) : integer(n), dValue(d) {}
  CIntDoublePair(const CIntDoublePair&) = default;
  CIntDoublePair& operator=(const CIntDoublePair&) = default;
  ~CIntDoublePair() override = default;

  /// The int equal and the double exactly equal.
  virtual int operator==(const CIntDoublePair& o) const { return integer == o.integer && dValue == o.dValue; }
  virtual int operator!=(const CIntDoublePair& o) const { return !(*this == o); }
  virtual CIntDoublePair* clone() const { return new CIntDoublePair(*this); }
  /// Version word 1, the int, the double.
  void Serialize(CArchive& ar) override;

  int GetInteger() const { return integer; }
  void SetInteger(int n) { integer = n; }
  double GetDouble() const { return dValue; }
  void SetDouble(double d) { dValue = d; }

  int integer = 0;
  double dValue = 0.0;
};

class CIntStringPair : public CObject {
 public:
  enum { m_nVersion = 1 };

  CIntStringPair() = default;
  CIntStringPair(int n, const CString& s) : integer(n), string(s) {}
  CIntStringPair(const CIntStringPair&) = default;
  CIntStringPair& operator=(const CIntStringPair&) = default;
  ~CIntStringPair() override = default;

  /// The int equal and the strings equal, case-sensitive.
  virtual int operator==(const CIntStringPair& o) const { return integer == o.integer && string == o.string; }
  virtual int operator!=(const CIntStringPair& o) const { return !(*this == o); }
  virtual CIntStringPair* clone() const { return new CIntStringPair(*this); }
  /// Version word 1, the int, the string in the archive's string form.
  void Serialize(CArchive& ar) override;

  int GetInteger() const { return integer; }
  void SetInteger(int n) { integer = n; }
  const CString& GetString() const { return string; }
  void SetString(const CString& s) { string = s; }
  void SetData(int n, const CString& s) { integer = n, string = s; }

  int integer = 0;
  CString string;
};

class CIntPairArray : public corlith::OwningPtrArray<CIntPairArray, CIntPair> {
 public:
  enum { m_nVersion = 1 };

  void AddElement(int n1, int n2);
  /// Appends n pairs (n1, n2); nothing when n <= 0.
  void SetPairDataInArray(int n, int n1, int n2);
  /// First index whose integer1 equals n; -1 when none.
  int GetMathchIndexInInt1(int n) const;
  /// First index whose integer2 equals n; -1 when none.
  int GetMathchIndexInInt2(int n) const;
  /// integer1 of the first pair whose integer2 equals n; -2147483648 when none.
  int GetMatchInteger1(int n) const;
  /// integer2 of the first pair whose integer1 equals n; -2147483648 when none.
  int GetMatchInteger2(int n) const;
};

class CIntPairArrayArray : public corlith::OwningPtrArray<CIntPairArrayArray, CIntPairArray> {
 public:
  enum { m_nVersion = 1 };
};

class CIntDoublePairArray : public corlith::OwningPtrArray<CIntDoublePairArray, CIntDoublePair> {
 public:
  enum { m_nVersion = 1 };
};

class CIntStringPairArray : public corlith::OwningPtrArray<CIntStringPairArray, CIntStringPair> {
 public:
  enum { m_nVersion = 1 };

  void AddElement(int n, const CString& s);
  /// First index whose integer equals n; -1 when none.
  int GetMathchIndex(int n) const;
  /// First index whose string equals s (case-sensitive); -1 when none.
  int GetMathchIndex(const CString& s) const;
  /// The string of the first pair whose integer equals n; empty when none.
  CString GetMatchString(int n) const;
  /// The integer of the first pair whose string equals s; -2147483648 when none.
  int GetMatchInteger(const CString& s) const;
  /// nKey 0 by the integer (sign of the wrapped 32-bit difference), 1 by the string in
  /// the locale's case-insensitive collation, any other key leaves all equal; nAscending
  /// 0 reverses. The key and direction reach Compare through per-thread variables, so
  /// sorts on different threads do not disturb each other.
  void Sort(int nKey, int nAscending);
  /// The qsort-style comparator over const CIntStringPair* const*, reading the key and
  /// direction that Sort handed over on this thread.
  static int Compare(const void* a, const void* b);
};
