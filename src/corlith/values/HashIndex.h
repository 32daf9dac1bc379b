// corlith::HashIndex: a hash index over the elements of a framework array, kept beside
// the array so that "is an equal element held?" costs O(1) in expectation instead of a
// scan. The array stays the only owner of the elements and their order; the index
// records the array's change stamp and rebuilds itself (O(n)) whenever the array was
// changed by anything other than the appends it was told about, so every member that
// changes the array (inherited ones, archive loads, mutable element access) keeps it
// right. Limit: a reference into the array taken before a look-up and written through
// after it is not seen; take the reference again after the look-up.
#pragma once

#include <corlith/framework/Array.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <unordered_set>
#include <utility>
#include <vector>

namespace corlith {

/// ARRAY is a CArray (or derived) of elements; TRAITS gives
///   static std::size_t Hash(const KEY&) for the element type and every key type, and
///   static bool Equal(const ELEMENT&, const KEY&),
/// with equal elements hashing alike. Find answers the first index holding an equal
/// element, as a scan from the front would.
template <class ARRAY, class TRAITS>
class HashIndex {
 public:
  HashIndex() = default;
  // A copy starts empty and builds itself on first use: the copied array's stamp says
  // nothing about the source's index.
  HashIndex(const HashIndex&) noexcept {}
  HashIndex& operator=(const HashIndex&) noexcept {
    Invalidate();
    return *this;
  }
  ~HashIndex() = default;

  /// The first index of an element equal to key, or -1.
  template <class KEY>
  INT_PTR Find(const ARRAY& array, const KEY& key) {
    Sync(array);
    const std::size_t hash = TRAITS::Hash(key);
    for (std::size_t slot = hash & m_mask;; slot = (slot + 1) & m_mask) {
      const Slot& s = m_slots[slot];
      if (s.index < 0) return -1;
      if (s.hash == hash && TRAITS::Equal(array.GetData()[s.index], key)) return s.index;
    }
  }

  /// Records that the element at index was just appended to array (its last element)
  /// by a member of the owner that looked it up first; any other change is found
  /// through the stamp.
  void Appended(const ARRAY& array, INT_PTR index) {
    if (m_valid && m_stamp + 1 == array.GetChangeStamp() && index == array.GetSize() - 1) {
      Insert(array, index);
      m_stamp = array.GetChangeStamp();
    } else {
      Invalidate();
    }
  }

  /// Forgets everything; the next look-up rebuilds.
  void Invalidate() { m_valid = false; }

 private:
  struct Slot {
    std::size_t hash = 0;
    INT_PTR index = -1;  // -1: empty
  };

  void Sync(const ARRAY& array) {
    if (m_valid && m_stamp == array.GetChangeStamp()) return;
    const auto n = static_cast<std::size_t>(array.GetSize());
    // At most half full, so probes stay short.
    const std::size_t capacity = std::bit_ceil(std::max<std::size_t>(16, 2 * n + 2));
    m_slots.assign(capacity, Slot{});
    m_mask = capacity - 1;
    m_used = 0;
    for (INT_PTR i = 0; i < array.GetSize(); ++i) Insert(array, i);
    m_stamp = array.GetChangeStamp();
    m_valid = true;
  }

  // Keeps the first index of equal elements: a later equal one is not entered.
  void Insert(const ARRAY& array, INT_PTR index) {
    if (2 * (m_used + 1) > m_slots.size()) Grow();
    const auto& element = array.GetData()[index];
    const std::size_t hash = TRAITS::Hash(element);
    for (std::size_t slot = hash & m_mask;; slot = (slot + 1) & m_mask) {
      Slot& s = m_slots[slot];
      if (s.index < 0) {
        s = Slot{hash, index};
        ++m_used;
        return;
      }
      if (s.hash == hash && TRAITS::Equal(array.GetData()[s.index], element)) return;
    }
  }

  void Grow() {
    std::vector<Slot> old(2 * m_slots.size());
    old.swap(m_slots);
    m_mask = m_slots.size() - 1;
    for (const Slot& s : old) {
      if (s.index < 0) continue;
      std::size_t slot = s.hash & m_mask;
      while (m_slots[slot].index >= 0) slot = (slot + 1) & m_mask;
      m_slots[slot] = s;
    }
  }

  std::vector<Slot> m_slots;
  std::size_t m_mask = 0;
  std::size_t m_used = 0;
  ULONGLONG m_stamp = 0;
  bool m_valid = false;
};

/// Removes every element whose key (keyOf(element), a hashable value such as a number,
/// a pointer or a std::string_view into the element) equals the key of an earlier one:
/// first occurrences survive in their order. Linear in expectation; the result is the
/// one of the pairwise scan "for each i, remove every later j equal to i".
template <class TYPE, class ARG_TYPE, class KEY_OF>
void RemoveLaterDuplicates(CArray<TYPE, ARG_TYPE>& array, KEY_OF keyOf) {
  const auto n = static_cast<std::size_t>(array.GetSize());
  if (n < 2) return;
  using Key = decltype(keyOf(std::declval<const TYPE&>()));
  // Decide first, move afterwards: keys may point into the elements.
  std::vector<bool> keep(n);
  {
    const TYPE* elements = std::as_const(array).GetData();
    std::unordered_set<Key> seen;
    seen.reserve(n);
    for (std::size_t i = 0; i < n; ++i) keep[i] = seen.insert(keyOf(elements[i])).second;
  }
  TYPE* elements = array.GetData();
  std::size_t kept = 0;
  for (std::size_t i = 0; i < n; ++i) {
    if (!keep[i]) continue;
    if (kept != i) elements[kept] = std::move(elements[i]);
    ++kept;
  }
  array.SetSize(static_cast<INT_PTR>(kept));
}

}  // namespace corlith
