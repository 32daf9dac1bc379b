// CArray<TYPE, ARG_TYPE>: the framework's dynamic array with signed 64-bit counts.
// Element access outside 0..size-1, a negative size, a bad insert or remove range and
// appending an array to itself throw CInvalidArgException. Archives hold the count
// (CArchive::WriteCount form) and then the elements: trivially copyable elements as
// their raw bytes, CString elements in the string form, CObject elements through
// their Serialize. corlith::LoadCounted is the one way every array load of the library
// turns a count read from an archive into elements.
#pragma once

#include <corlith/framework/Archive.h>
#include <corlith/framework/Object.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

template <class TYPE, class ARG_TYPE>
class CArray;

namespace corlith::detail {

/// std::allocator, except that a trivially default-constructible element made without
/// a value is left uninitialised, so that a load can grow an array and read straight
/// over the new elements. CArray value-initialises such elements itself wherever the
/// framework promises it.
template <class T>
struct ArrayAllocator : std::allocator<T> {
  ArrayAllocator() = default;
  template <class U>
  ArrayAllocator(const ArrayAllocator<U>&) noexcept {}  // NOLINT(google-explicit-constructor): rebinding
  template <class U>
  void construct(U* p) {
    if constexpr (std::is_trivially_default_constructible_v<U>) {
      ::new (static_cast<void*>(p)) U;
    } else {
      ::new (static_cast<void*>(p)) U();
    }
  }
  template <class U, class... Args>
  void construct(U* p, Args&&... args) {
    ::new (static_cast<void*>(p)) U(std::forward<Args>(args)...);
  }
  /// The elements are exactly U objects, so their (often virtual) destructor is called
  /// directly: an empty one then costs nothing, instead of a pass over every element.
  template <class U>
  void destroy(U* p) {
    if constexpr (std::is_class_v<U>) p->U::~U();
  }
};

/// Lets LoadCounted grow an array without initialising the new elements.
struct ArrayLoadAccess {
  template <class TYPE, class ARG_TYPE>
  static TYPE* GrowUninitialised(CArray<TYPE, ARG_TYPE>& array, INT_PTR nCount) {
    return array.GrowUninitialised(nCount);
  }
};

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

/// Elements per step when loading elements that read themselves: 4 KiB worth, so that
/// the elements a step value-initialises are still in the first-level cache when they
/// are read over (measured: 64 KiB steps loaded points at half the speed).
template <typename TYPE>
constexpr INT_PTR kLoadStep = std::max<INT_PTR>(1, static_cast<INT_PTR>(4096 / sizeof(TYPE)));
/// Elements per step of a raw load at least (more when the data left says they are
/// there): 64 KiB worth, read as one block.
template <typename TYPE>
constexpr INT_PTR kRawLoadStep = std::max<INT_PTR>(1, static_cast<INT_PTR>(65536 / sizeof(TYPE)));

/// How many of `count` elements, each taking at least `minBytes` in the archive, can
/// really follow (never more than INT32_MAX).
inline ULONGLONG ElementsPresent(const CArchive& ar, ULONGLONG count, ULONGLONG minBytes) {
  const ULONGLONG present = ar.GetBytesLeft() / std::max<ULONGLONG>(minBytes, 1);
  return std::min({count, present, static_cast<ULONGLONG>(INT32_MAX)});
}

}  // namespace corlith::detail

namespace corlith {

/// The element reader of LoadCounted for elements stored as their raw bytes.
struct RawElements {};

/// Appends `count` elements read from the archive to `array`; the count comes from the
/// archive and is believed only as far as the data left (CArchive::GetBytesLeft) can
/// hold elements of at least `minBytes` each. Memory grows in steps of what is present
/// (at least 64 KiB worth), so a hostile count runs out of data and ends in
/// CArchiveException::endOfFile, never in a huge allocation. The bytes consumed are the
/// same as reading element by element.
/// `readOne(ar, element)` reads one value-initialised element in place. A batch reader,
/// `readMany(ar, elements, n) -> INT_PTR`, reads 1 to n value-initialised elements and
/// says how many, throwing only before it has completed any. RawElements reads
/// trivially copyable elements as their bytes, in one block per step, without
/// initialising them first. On any exception the array keeps the elements read
/// completely before it, and the exception propagates.
template <class TYPE, class ARG_TYPE, class ReadOne>
void LoadCounted(CArchive& ar, CArray<TYPE, ARG_TYPE>& array, ULONGLONG count, ULONGLONG minBytes,
                 ReadOne readOne) {
  constexpr bool kRaw = std::is_same_v<ReadOne, RawElements>;
  static_assert(!kRaw || std::is_trivially_copyable_v<TYPE>, "raw elements must be trivially copyable");
  const INT_PTR first = array.GetSize();
  INT_PTR done = 0;  // elements read completely
  array.Preallocate(first + static_cast<INT_PTR>(detail::ElementsPresent(ar, count, minBytes)));
  try {
    while (static_cast<ULONGLONG>(done) < count) {
      const ULONGLONG remaining = count - static_cast<ULONGLONG>(done);
      auto step = static_cast<ULONGLONG>(kRaw ? detail::kRawLoadStep<TYPE> : detail::kLoadStep<TYPE>);
      if constexpr (kRaw) step = std::max(step, detail::ElementsPresent(ar, remaining, minBytes));
      const auto n = static_cast<INT_PTR>(std::min(remaining, step));
      if constexpr (kRaw) {
        TYPE* elements = detail::ArrayLoadAccess::GrowUninitialised(array, n);
        const ULONGLONG before = ar.GetPosition();
        try {
          ar.EnsureRead(elements, sizeof(TYPE) * static_cast<std::size_t>(n));
        } catch (...) {
          done += static_cast<INT_PTR>((ar.GetPosition() - before) / sizeof(TYPE));
          throw;
        }
        done += n;
      } else {
        array.SetSize(first + done + n);
        TYPE* elements = array.GetData() + first + done;
        if constexpr (std::is_invocable_v<ReadOne&, CArchive&, TYPE&>) {
          for (INT_PTR i = 0; i < n; ++i, ++done) readOne(ar, elements[i]);
        } else {
          for (INT_PTR i = 0; i < n;) {
            const INT_PTR got = readOne(ar, elements + i, n - i);
            i += got;
            done += got;
          }
        }
      }
    }
  } catch (...) {
    array.SetSize(first + done);
    throw;
  }
}

}  // namespace corlith

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
    const std::size_t old = m_data.size();
    m_data.resize(static_cast<std::size_t>(nNewSize));
    if constexpr (std::is_trivially_default_constructible_v<TYPE>) {
      if (m_data.size() > old)
        std::fill(m_data.begin() + static_cast<std::ptrdiff_t>(old), m_data.end(), TYPE{});
    }
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
    const auto items = pNewArray->m_data;
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
    const auto count = static_cast<ULONGLONG>(ar.ReadCount());
    if constexpr (std::is_trivially_copyable_v<TYPE> && !std::is_pointer_v<TYPE>) {
      corlith::LoadCounted(ar, *this, count, sizeof(TYPE), corlith::RawElements{});
    } else {
      // A string takes at least its 1-byte length; other elements at least 1 byte too.
      corlith::LoadCounted(ar, *this, count, 1, [](CArchive& a, TYPE& element) {
        corlith::detail::SerializeElements(a, &element, 1);
      });
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
  friend struct corlith::detail::ArrayLoadAccess;

  void Touch() { ++m_stamp.value; }
  /// Appends nCount elements for a load to read over; trivially default-constructible
  /// ones are left uninitialised. Returns the first new element.
  TYPE* GrowUninitialised(INT_PTR nCount) {
    Touch();
    const std::size_t old = m_data.size();
    Reserve(GetSize() + nCount);
    m_data.resize(old + static_cast<std::size_t>(nCount));
    return m_data.data() + old;
  }
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

  /// Copies and moves change the stamp of the array they change (a moved-from array
  /// included) rather than carry the source's over, so an array never shows a stamp
  /// that an index recorded for other contents.
  struct ChangeStamp {
    ULONGLONG value = 0;
    ChangeStamp() = default;
    ChangeStamp(const ChangeStamp&) noexcept {}
    ChangeStamp(ChangeStamp&& source) noexcept { ++source.value; }
    ChangeStamp& operator=(const ChangeStamp&) noexcept {
      ++value;
      return *this;
    }
    ChangeStamp& operator=(ChangeStamp&& source) noexcept {
      ++value;
      ++source.value;
      return *this;
    }
    ~ChangeStamp() = default;
  };

  std::vector<TYPE, corlith::detail::ArrayAllocator<TYPE>> m_data;
  INT_PTR m_nGrowBy = 0;
  ChangeStamp m_stamp;
};
