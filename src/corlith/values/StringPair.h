// Pairs of strings: CStringPair (equal in either order), CStringStringArrayPair (a
// string with a string list), their owning arrays, and CStringPairSet, an owning array
// that refuses a pair equal to one it holds.
#pragma once

#include <corlith/framework/StringArray.h>
#include <corlith/values/ExPtrArray.h>

class CStringPair : public CObject {
 public:
  enum { m_nVersion = 1 };

  CStringPair() = default;
  CStringPair(const CString& s1, const CString& s2) : first(s1), second(s2) {}
  CStringPair(const CStringPair&) = default;
  CStringPair& operator=(const CStringPair&) = default;
  ~CStringPair() override = default;

  /// The same two strings in either order, case-sensitive.
  virtual int operator==(const CStringPair& o) const;
  virtual int operator!=(const CStringPair& o) const { return !(*this == o); }
  virtual CStringPair* clone() const { return new CStringPair(*this); }
  /// Version word 1, first, second in the archive's string form.
  void Serialize(CArchive& ar) override;

  const CString& GetFirst() const { return first; }
  const CString& GetSecond() const { return second; }
  void SetData(const CString& s1, const CString& s2) { first = s1, second = s2; }

  CString first;
  CString second;
};

class CStringStringArrayPair : public CObject {
 public:
  enum { m_nVersion = 1 };

  CStringStringArrayPair() = default;
  CStringStringArrayPair(const CString& s, const CStringArray& l) : string(s), list(l) {}
  CStringStringArrayPair(const CStringStringArrayPair&) = default;
  CStringStringArrayPair& operator=(const CStringStringArrayPair&) = default;
  ~CStringStringArrayPair() override = default;

  /// The string and every list entry equal, case-sensitive and in order.
  virtual int operator==(const CStringStringArrayPair& o) const;
  virtual int operator!=(const CStringStringArrayPair& o) const { return !(*this == o); }
  virtual CStringStringArrayPair* clone() const { return new CStringStringArrayPair(*this); }
  /// Version word 1, the string, then the list in the framework's CStringArray form.
  void Serialize(CArchive& ar) override;

  const CString& GetString() const { return string; }
  void SetString(const CString& s) { string = s; }
  CStringArray& GetStringArray() { return list; }
  const CStringArray& GetStringArray() const { return list; }
  /// Copies the list into out (replacing its content).
  void GetStringArray(CStringArray& out) const { out.Copy(list); }
  void SetStringArray(const CStringArray& l) { list.Copy(l); }
  void SetData(const CString& s, const CStringArray& l) { string = s, list.Copy(l); }

  CString string;
  CStringArray list;
};

class CStringPairArray : public corlith::OwningPtrArray<CStringPairArray, CStringPair> {
 public:
  enum { m_nVersion = 1 };
};

class CStringPairArrayArray : public corlith::OwningPtrArray<CStringPairArrayArray, CStringPairArray> {
 public:
  enum { m_nVersion = 1 };
};

class CStringStringArrayPairArray
    : public corlith::OwningPtrArray<CStringStringArrayPairArray, CStringStringArrayPair> {
 public:
  enum { m_nVersion = 1 };
};

/// Find and Add scan the held pairs (unlike CStringExSet and CDWordPairSet, which keep a
/// hash index): the set hands out its elements as mutable pointers, and a pair changed
/// in place through one is a change no index beside the array could see.
class CStringPairSet : public corlith::OwningPtrArray<CStringPairSet, CStringPair> {
 public:
  enum { m_nVersion = 1 };

  /// First index whose pair equals p (either order); -1 when none.
  int Find(const CStringPair& p) const;
  BOOL IsExist(const CStringPair& p) const { return Find(p) != -1; }
  /// 0 when an equal pair is held (the caller keeps p; also for a null p); otherwise
  /// appends p, takes ownership and returns 1.
  BOOL Add(CStringPair* p);
};
