// The archive layout every serialisable class of the library follows, as helpers:
// a value class writes a 4-byte version word and then its fields; an array writes the
// header 0x80000001 (version 1, top bit = "an 8-byte count follows"), the count and the
// elements. Loading accepts the older header without the top bit and a 4-byte count.
// A version or header that does not match is skipped silently (see each helper).
// Loads never size memory from a count: they grow one element at a time, so a
// hostile count ends in CArchiveException::endOfFile.
#pragma once

#include <corlith/framework/Archive.h>
#include <corlith/framework/Array.h>

#include <algorithm>
#include <memory>
#include <type_traits>

namespace corlith {

/// The array header as stored: version 1 with the 64-bit-count flag.
inline constexpr UINT kArrayHeader = 0x80000001u;
inline constexpr UINT kArrayCount64Flag = 0x80000000u;

/// Writes the value-class version word.
inline void StoreVersion(CArchive& ar, int nVersion) { ar << nVersion; }

/// Reads the version word; true when it equals nVersion and the fields should follow.
/// Deliberate: on a mismatch nothing else is consumed and no error is raised, so the
/// stream is out of step from here on.
inline bool LoadVersion(CArchive& ar, int nVersion) {
  int stored = 0;
  ar >> stored;
  return stored == nVersion;
}

inline void StoreArrayHeader(CArchive& ar, INT_PTR nCount) {
  ar << kArrayHeader;
  ar << static_cast<LONGLONG>(nCount);
}

/// Reads header and count; false (only the 4 header bytes consumed) when the header's
/// version is not 1. A negative count (either form) loads nothing.
inline bool LoadArrayHeader(CArchive& ar, ULONGLONG& nCount) {
  UINT header = 0;
  ar >> header;
  nCount = 0;
  if ((header & ~kArrayCount64Flag) != 1) return false;
  if (header & kArrayCount64Flag) {
    LONGLONG count = 0;
    ar >> count;
    if (count > 0) nCount = static_cast<ULONGLONG>(count);
  } else {
    int count = 0;
    ar >> count;
    if (count > 0) nCount = static_cast<ULONGLONG>(count);
  }
  return true;
}

/// One element of a value array: numbers as raw bytes, objects through Serialize.
template <class TYPE>
void SerializeElement(CArchive& ar, TYPE& element) {
  if constexpr (std::is_base_of_v<CObject, TYPE>) {
    // A value array holds exactly TYPE objects, so the call need not be virtual, and
    // the compiler can inline it into the element loop.
    element.TYPE::Serialize(ar);
  } else if (ar.IsStoring()) {
    ar << element;
  } else {
    ar >> element;
  }
}

/// A value class's whole archive form: the version word, then each field in order,
/// numbers and text as their bytes, objects through their own Serialize (each with its
/// own version word). Deliberate: on a mismatched version nothing else is read.
template <class... Fields>
void SerializeFields(CArchive& ar, int nVersion, Fields&... fields) {
  if (ar.IsStoring()) {
    StoreVersion(ar, nVersion);
  } else if (!LoadVersion(ar, nVersion)) {
    return;
  }
  (SerializeElement(ar, fields), ...);
}

/// The value-array form. Loading empties the array first; each element starts
/// default-constructed and reads itself (an element that fails to read is dropped).

template <class TYPE, class ARG_TYPE>
void SerializeValueArray(CArchive& ar, CArray<TYPE, ARG_TYPE>& array) {
  if (ar.IsStoring()) {
    StoreArrayHeader(ar, array.GetSize());
    for (TYPE& element : array) SerializeElement(ar, element);
    return;
  }
  array.RemoveAll();
  ULONGLONG count = 0;
  if (!LoadArrayHeader(ar, count)) return;
  // An object element starts with its 4-byte version word.
  constexpr ULONGLONG kMinBytes = std::is_base_of_v<CObject, TYPE> ? 4 : sizeof(TYPE);
  array.Preallocate(detail::ElementsPresent(ar, count, kMinBytes));
  // Same result as reading each element into a default temporary and appending it, but
  // grown a bounded chunk at a time and read in place: a hostile count costs at most
  // one chunk beyond the data present. A failure leaves only the elements fully read.
  INT_PTR done = 0;
  try {
    while (static_cast<ULONGLONG>(done) < count) {
      const auto chunk = static_cast<INT_PTR>(
          std::min<ULONGLONG>(count - static_cast<ULONGLONG>(done), detail::kLoadChunk<TYPE>));
      array.SetSize(done + chunk);
      TYPE* elements = array.GetData();
      for (const INT_PTR end = done + chunk; done < end; ++done) SerializeElement(ar, elements[done]);
    }
  } catch (...) {
    array.SetSize(done);
    throw;
  }
}

/// The pointer-array form over any array of TYPE* whose DeleteAll frees the elements.
/// A null slot is stored as a default element, so that the count stays true; loading
/// calls DeleteAll, then creates each element on the heap and lets it read itself.
template <class TYPE, class ARRAY>
void SerializePointerArray(CArchive& ar, ARRAY& array) {
  if (ar.IsStoring()) {
    StoreArrayHeader(ar, array.GetSize());
    for (TYPE* element : array) {
      if (element) {
        element->Serialize(ar);
      } else {
        TYPE stand_in{};
        stand_in.Serialize(ar);
      }
    }
    return;
  }
  array.DeleteAll();
  ULONGLONG count = 0;
  if (!LoadArrayHeader(ar, count)) return;
  for (ULONGLONG i = 0; i < count; ++i) {
    auto element = std::make_unique<TYPE>();
    element->Serialize(ar);
    array.Add(element.get());
    static_cast<void>(element.release());  // the array owns it now
  }
}

}  // namespace corlith
