// CArray<TYPE, ARG_TYPE>: the framework's dynamic array with signed 64-bit counts.
// Element access outside 0..size-1, a negative size, a bad insert or remove range and
// appending an array to itself throw CInvalidArgException. Archives hold the count
// (CArchive::WriteCount form) and then the elements: trivially copyable elements as
// their raw bytes, CString elements in the string form, CObject elements through
// their Serialize.
#pragma once

#include <corlith/framework/Archive.h>
#include <corlith/framework/Object.h>

#include <algorithm>
#include <cstdint>
#include <type_traits>
#include <utility>
#include <vector>

namespace corlith::detail {

/// Stores or loads n elements. Overload for element types with their own form.
template <typename TYPE>
void SerializeElements(CArchive& ar, TYPE* pElements, INT_PTR nCount) {
  if constexpr (std::is_base_of_v<CObject, TYPE>) {
    for (INT_PTR i = 0; i < nCount; ++i) pElements[i].Serialize(ar);
  } else if constexpr (std::is_same_v<TYPE, CString>) {
    for (INT_PTR i = 0; i < nCount; ++i) {
      if (ar.IsStoring()) {
        ar << pElements[i];
      } else {
        ar >> pElements[i];
      }
    }
  } else if constexpr (std::is_pointer_v<TYPE>) {
    // Addresses mean nothing in another process: arrays of pointers serialise their
    // objects in a form of their own, and the plain form refuses them.
    static_cast<void>(pElements);
    static_cast<void>(nCount);
    AfxThrowNotSupportedException();
  } else {
    static_assert(std::is_trivially_copyable_v<TYPE>, "no archive form for this element type");
    const std::size_t bytes = sizeof(TYPE) * static_cast<std::size_t>(nCount);
    if (ar.IsStoring()) {
      for (std::size_t done = 0; done < bytes;) {
        const auto chunk = static_cast<UINT>(std::min<std::size_t>(bytes - done, 0x40000000));
        ar.Write(reinterpret_cast<const BYTE*>(pElements) + done, chunk);
        done += chunk;
      }
    } else {
      ar.EnsureRead(pElements, bytes);
    }
  }
}

/// Elements per step when loading, so that a hostile count costs at most about 64 KiB
/// of memory beyond the data actually present.
template <typename TYPE>
constexpr INT_PTR kLoadChunk = std::max<INT_PTR>(1, static_cast<INT_PTR>(65536 / sizeof(TYPE)));

/// How many of `count` elements, each taking at least `minBytes` in the archive, can
/// really follow: the count is believed only as far as the data is there, so capacity
/// can be set once without trusting a hostile count.
inline INT_PTR ElementsPresent(const CArchive& ar, ULONGLONG count, ULONGLONG minBytes) {
  const ULONGLONG present = ar.GetBytesLeft() / std::max<ULONGLONG>(minBytes, 1);
  return static_cast<INT_PTR>(std::min({count, present, static_cast<ULONGLONG>(INT32_MAX)}));
}

/// The fewest archive bytes one element of TYPE takes in the framework's forms.
template <typename TYPE>
constexpr ULONGLONG kMinArchiveBytes =
    std::is_trivially_copyable_v<TYPE> && !std::is_pointer_v<TYPE> ? sizeof(TYPE) : 1;

}  // namespace corlith::detail

template <class TYPE, class ARG_TYPE = const TYPE&>
class CArray : public CObject {
  static_assert(!std::is_same_v<TYPE, bool>,
                "use BOOL elements: a bool array has no element storage to point at");

 public:
  CArray() = default;
  CArray(const CArray&) = default;
  CArray(CArray&&) noexcept = default;
  CArray& operator=(const CArray&) = default;
  CArray& operator=(CArray&&) noexcept = default;
  ~CArray() override = default;

  /// A number that changes whenever the array may have changed: every non-const member
  /// moves it, mutable element access (operator[], GetAt, GetData, begin) included. An
  /// index kept beside the array compares it to know when it must be rebuilt.
  ULONGLONG GetChangeStamp() const { return m_stamp.value; }

  INT_PTR GetSize() const { return static_cast<INT_PTR>(m_data.size()); }
  INT_PTR GetCount() const { return GetSize(); }
  BOOL IsEmpty() const { return m_data.empty(); }
  /// GetSize() - 1 (-1 when empty).
  INT_PTR GetUpperBound() const { return GetSize() - 1; }

  /// Resizes; new elements are value-initialised, shrinking keeps the capacity.
  /// nGrowBy is the minimum growth step (-1 keeps the current one).
  void SetSize(INT_PTR nNewSize, INT_PTR nGrowBy = -1) {
    if (nNewSize < 0) AfxThrowInvalidArgException();
    if (nGrowBy >= 0) m_nGrowBy = nGrowBy;
    Touch();
    Reserve(nNewSize);
    m_data.resize(static_cast<std::size_t>(nNewSize));
  }
  void FreeExtra() { m_data.shrink_to_fit(); }
  /// Makes room for nCount elements without changing the size (a hint, like CString's).
  void Preallocate(INT_PTR nCount) {
    if (nCount > 0) m_data.reserve(static_cast<std::size_t>(nCount));
  }
  void RemoveAll() {
    Touch();
    m_data.clear();
  }

  const TYPE& GetAt(INT_PTR nIndex) const { return m_data[Checked(nIndex)]; }
  TYPE& GetAt(INT_PTR nIndex) {
    Touch();
    return m_data[Checked(nIndex)];
  }
  void SetAt(INT_PTR nIndex, ARG_TYPE newElement) { GetAt(nIndex) = newElement; }
  const TYPE& ElementAt(INT_PTR nIndex) const { return GetAt(nIndex); }
  TYPE& ElementAt(INT_PTR nIndex) { return GetAt(nIndex); }
  const TYPE& operator[](INT_PTR nIndex) const { return GetAt(nIndex); }
  TYPE& operator[](INT_PTR nIndex) { return GetAt(nIndex); }
  /// The contiguous storage (null when empty).
  const TYPE* GetData() const { return m_data.empty() ? nullptr : m_data.data(); }
  TYPE* GetData() {
    Touch();
    return m_data.empty() ? nullptr : m_data.data();
  }

  /// Sets element nIndex, growing the array when nIndex is past the end.
  void SetAtGrow(INT_PTR nIndex, ARG_TYPE newElement) {
    if (nIndex < 0) AfxThrowInvalidArgException();
    TYPE copy(newElement);  // newElement may live in this array
    Touch();
    if (nIndex >= GetSize()) SetSize(nIndex + 1);
    m_data[static_cast<std::size_t>(nIndex)] = std::move(copy);
  }
  /// Appends; returns the new element's index.
  INT_PTR Add(ARG_TYPE newElement) {
    TYPE copy(newElement);
    Touch();
    Reserve(GetSize() + 1);
    m_data.push_back(std::move(copy));
    return GetSize() - 1;
  }
  /// Appends a copy of src; returns the old size. Appending to itself throws.
  INT_PTR Append(const CArray& src) {
    if (&src == this) AfxThrowInvalidArgException();
    const INT_PTR old = GetSize();
    Touch();
    Reserve(old + src.GetSize());
    m_data.insert(m_data.end(), src.m_data.begin(), src.m_data.end());
    return old;
  }
  /// Makes this a copy of src (nothing happens when src is this array).
  void Copy(const CArray& src) {
    if (&src == this) return;
    Touch();
    m_data = src.m_data;
  }

  /// Inserts nCount copies at nIndex; past the end the gap is filled with default
  /// elements. A negative index or a count below 1 throws.
  void InsertAt(INT_PTR nIndex, ARG_TYPE newElement, INT_PTR nCount = 1) {
    if (nIndex < 0 || nCount < 1) AfxThrowInvalidArgException();
    TYPE copy(newElement);
    Touch();
    if (nIndex >= GetSize()) {
      SetSize(nIndex + nCount);
    } else {
      Reserve(GetSize() + nCount);
      m_data.insert(m_data.begin() + nIndex, static_cast<std::size_t>(nCount), TYPE());
    }
    for (INT_PTR i = 0; i < nCount; ++i) m_data[static_cast<std::size_t>(nIndex + i)] = copy;
  }
  /// Inserts all elements of pNewArray at nStartIndex.
  void InsertAt(INT_PTR nStartIndex, const CArray* pNewArray) {
    if (!pNewArray || nStartIndex < 0) AfxThrowInvalidArgException();
    if (pNewArray->IsEmpty()) return;
    const std::vector<TYPE> items = pNewArray->m_data;
    InsertAt(nStartIndex, items.front(), static_cast<INT_PTR>(items.size()));
    std::copy(items.begin(), items.end(), m_data.begin() + nStartIndex);
  }
  /// Removes nCount elements from nIndex; the whole range must exist.
  void RemoveAt(INT_PTR nIndex, INT_PTR nCount = 1) {
    if (nIndex < 0 || nCount < 0 || nIndex > GetSize() || nCount > GetSize() - nIndex) {
      AfxThrowInvalidArgException();
    }
    Touch();
    m_data.erase(m_data.begin() + nIndex, m_data.begin() + nIndex + nCount);
  }

  void Serialize(CArchive& ar) override {
    if (ar.IsStoring()) {
      ar.WriteCount(static_cast<DWORD_PTR>(GetSize()));
      corlith::detail::SerializeElements(ar, GetData(), GetSize());
      return;
    }
    RemoveAll();
    auto remaining = static_cast<ULONGLONG>(ar.ReadCount());
    Preallocate(corlith::detail::ElementsPresent(ar, remaining, corlith::detail::kMinArchiveBytes<TYPE>));
    while (remaining > 0) {
      const auto chunk =
          static_cast<INT_PTR>(std::min<ULONGLONG>(remaining, corlith::detail::kLoadChunk<TYPE>));
      const INT_PTR old = GetSize();
      SetSize(old + chunk);
      corlith::detail::SerializeElements(ar, GetData() + old, chunk);
      remaining -= static_cast<ULONGLONG>(chunk);
    }
  }

  // Standard iteration, so that range-for and <algorithm> work on framework arrays.
  TYPE* begin() {
    Touch();
    return m_data.data();
  }
  TYPE* end() { return m_data.data() + m_data.size(); }
  const TYPE* begin() const { return m_data.data(); }
  const TYPE* end() const { return m_data.data() + m_data.size(); }

 private:
  void Touch() { ++m_stamp.value; }
  std::size_t Checked(INT_PTR nIndex) const {
    if (nIndex < 0 || nIndex >= GetSize()) AfxThrowInvalidArgException();
    return static_cast<std::size_t>(nIndex);
  }
  void Reserve(INT_PTR nNeeded) {
    const auto needed = static_cast<std::size_t>(nNeeded);
    if (needed <= m_data.capacity()) return;
    // The grow step is a minimum; capacity also doubles so that Add stays amortised O(1).
    const std::size_t step = static_cast<std::size_t>(std::max<INT_PTR>(m_nGrowBy, 4));
    m_data.reserve(std::max({needed, m_data.capacity() * 2, m_data.size() + step}));
  }

  /// Copies and moves of the array change its stamp rather than take the source's, so
  /// an array never shows a stamp that an index recorded for different contents.
  struct ChangeStamp {
    ULONGLONG value = 0;
    ChangeStamp() = default;
    ChangeStamp(const ChangeStamp&) noexcept {}
    ChangeStamp& operator=(const ChangeStamp&) noexcept {
      ++value;
      return *this;
    }
    ~ChangeStamp() = default;
  };

  std::vector<TYPE> m_data;
  INT_PTR m_nGrowBy = 0;
  ChangeStamp m_stamp;
};
