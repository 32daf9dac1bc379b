// CDWordPair, two unsigned values of pointer width that compare equal in either order,
// and CDWordPairSet, its value array that refuses a pair equal to one it holds.
#pragma once

#include <corlith/values/ExPtrArray.h>
#include <corlith/values/HashIndex.h>

#include <cstddef>

class CDWordPair : public CObject {
 public:
  enum { m_nVersion = 1 };

  CDWordPair() = default;
  CDWordPair(DWORD_PTR d1, DWORD_PTR d2) : dw1(d1), dw2(d2) {}
  CDWordPair(const CDWordPair&) = default;
  CDWordPair& operator=(const CDWordPair&) = default;
  ~CDWordPair() override = default;

  /// The same two values in either order.
  virtual int operator==(const CDWordPair& o) const {
    return (dw1 == o.dw1 && dw2 == o.dw2) || (dw1 == o.dw2 && dw2 == o.dw1);
  }
  virtual int operator!=(const CDWordPair& o) const { return !(*this == o); }
  virtual CDWordPair* clone() const { return new CDWordPair(*this); }
  /// Version word 1, then both values as 8-byte integers.
  void Serialize(CArchive& ar) override;

  DWORD_PTR dw1 = 0;
  DWORD_PTR dw2 = 0;
};

namespace corlith::detail {

/// How CDWordPairSet's index hashes and compares pairs (either order is one pair).
struct DWordPairIndexTraits {
  static std::size_t Hash(const CDWordPair& p);
  static bool Equal(const CDWordPair& element, const CDWordPair& key) { return element == key; }
};

}  // namespace corlith::detail

/// A hash index beside the pairs makes Find, IsExist and Add O(1) in expectation; it
/// follows every change of the array (HashIndex.h). One thread at a time per set, const
/// members included.
class CDWordPairSet : public corlith::ValueArray<CDWordPairSet, CDWordPair> {
 public:
  enum { m_nVersion = 1 };

  /// First index whose pair equals p (either order); -1 when none.
  int Find(const CDWordPair& p) const;
  BOOL IsExist(const CDWordPair& p) const { return Find(p) != -1; }
  /// 1 when appended, 0 when an equal pair (in either order) is held.
  BOOL Add(CDWordPair p);

 private:
  mutable corlith::HashIndex<CArray<CDWordPair, CDWordPair&>, corlith::detail::DWordPairIndexTraits> m_index;
};
