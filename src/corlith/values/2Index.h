// C2Index, an ordered pair of ints, and C2IndexArray, its owning array with a look-up
// that may ignore the order.
#pragma once

#include <corlith/values/ExPtrArray.h>

class C2Index : public CObject {
 public:
  C2Index() = default;
  C2Index(int i1, int i2) : index1(i1), index2(i2) {}
  C2Index(const C2Index&) = default;
  C2Index& operator=(const C2Index&) = default;
  ~C2Index() override = default;

  /// Both indices equal, in order.
  virtual int operator==(const C2Index& o) const { return IsMatch(o.index1, o.index2); }
  virtual int operator!=(const C2Index& o) const { return !(*this == o); }
  /// Version word 1, index1, index2.
  void Serialize(CArchive& ar) override;
  virtual C2Index* clone() const { return new C2Index(*this); }

  int GetIndex1() const { return index1; }
  int GetIndex2() const { return index2; }
  void SetIndex1(int i) { index1 = i; }
  void SetIndex2(int i) { index2 = i; }
  bool IsMatch(int i1, int i2) const { return index1 == i1 && index2 == i2; }
  bool IsMatch_DontCareOrder(int i1, int i2) const { return IsMatch(i1, i2) || IsMatch(i2, i1); }

  int index1 = 0;
  int index2 = 0;
};

class C2IndexArray : public corlith::OwningPtrArray<C2IndexArray, C2Index> {
 public:
  /// First index whose element matches (in either order when bDontCareOrder != 0); -1 when none.
  int FindElement(int i1, int i2, int bDontCareOrder) const;
};
