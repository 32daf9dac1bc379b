// The archive layout every serialisable class of the library follows, as helpers:
// a value class writes a 4-byte version word and then its fields; an array writes the
// header 0x80000001 (version 1, top bit = "an 8-byte count follows"), the count and the
// elements. Loading accepts the older header without the top bit and a 4-byte count.
// A version or header that does not match is skipped silently (see each helper).
// Array loads go through corlith::LoadCounted: a count is believed only as far as the
// data left can hold elements, so a hostile count ends in CArchiveException::endOfFile.
#pragma once

#include <corlith/framework/Archive.h>
#include <corlith/framework/Array.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <span>
#include <tuple>
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

/// A record: a value class whose archive form is its version word (m_nVersion) and then
/// plain numbers, named by `auto ArchiveFields() { return std::tie(...); }`. Its
/// Serialize is SerializeRecord, and value arrays of it load at copy speed.
template <class TYPE>
concept ArchiveRecord = requires(TYPE& record) {
  {TYPE::m_nVersion};
  {record.ArchiveFields()};
};

/// A record's Serialize: SerializeFields over its ArchiveFields.
template <ArchiveRecord TYPE>
void SerializeRecord(CArchive& ar, TYPE& record) {
  std::apply([&](auto&... fields) { SerializeFields(ar, TYPE::m_nVersion, fields...); },
             record.ArchiveFields());
}

namespace detail {

/// The bytes of a record's fields in the archive.
template <class Fields>
struct FieldBytes;
template <class... Field>
struct FieldBytes<std::tuple<Field&...>> {
  static_assert((std::is_arithmetic_v<Field> && ...), "record fields are plain numbers");
  static constexpr std::size_t value = (sizeof(Field) + ... + 0);
};

/// Loads 1 to n records exactly as SerializeRecord reads each: as many as surely lie
/// whole in the archive buffer, parsed straight from it, or else one through its
/// Serialize (which refills the buffer, and may throw). Returns how many it loaded.
template <ArchiveRecord TYPE>
INT_PTR LoadRecords(CArchive& ar, TYPE* records, INT_PTR n) {
  constexpr std::size_t kBytes = sizeof(int) + FieldBytes<decltype(records->ArchiveFields())>::value;
  const std::span<const BYTE> buffered = ar.GetBuffered();
  // A record takes at most kBytes (a foreign version only its word), so this many surely
  // lie in the buffer: the loop needs no check of its own against the buffer's end.
  const auto whole = static_cast<INT_PTR>(std::min(static_cast<std::size_t>(n), buffered.size() / kBytes));
  if (whole == 0) {
    records[0].TYPE::Serialize(ar);
    return 1;
  }
  const BYTE* p = buffered.data();
  for (INT_PTR i = 0; i < whole; ++i) {
    int version = 0;
    std::memcpy(&version, p, sizeof version);
    if (version == TYPE::m_nVersion) {
      const BYTE* field = p + sizeof version;
      std::apply([&](auto&... f) { ((std::memcpy(&f, field, sizeof f), field += sizeof f), ...); },
                 records[i].ArchiveFields());
      p += kBytes;
    } else {
      // Deliberate: a foreign version consumes only its word and leaves the record as it was.
      p += sizeof version;
    }
  }
  ar.Consume(static_cast<std::size_t>(p - buffered.data()));
  return whole;
}

}  // namespace detail

/// The value-array form. Loading empties the array first; each element starts
/// default-constructed and reads itself (an element that fails to read is dropped).
/// Number elements load as one block of bytes, records straight from the buffer.
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
  if constexpr (std::is_arithmetic_v<TYPE> && !std::is_same_v<TYPE, bool>) {
    // `ar >> n` copies the number's bytes, so a block of them is the same.
    LoadCounted(ar, array, count, sizeof(TYPE), RawElements{});
  } else if constexpr (ArchiveRecord<TYPE>) {
    LoadCounted(ar, array, count, sizeof(int),
                [](CArchive& a, TYPE* elements, INT_PTR n) { return detail::LoadRecords(a, elements, n); });
  } else {
    // An object element starts with its 4-byte version word.
    constexpr ULONGLONG kMinBytes = std::is_base_of_v<CObject, TYPE> ? 4 : sizeof(TYPE);
    LoadCounted(ar, array, count, kMinBytes,
                [](CArchive& a, TYPE& element) { SerializeElement(a, element); });
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
