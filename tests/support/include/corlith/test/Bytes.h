// Archive bytes for tests: little-endian builders for hand-written expected bytes, and
// storing to or loading from bytes through a CArchive over a CMemFile. Framework layer
// only, so every test binary, benchmark and fuzz target can use it.
#pragma once

#include <corlith/framework/Archive.h>
#include <corlith/framework/MemFile.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace corlith::test {

/// Archive bytes, as stored or as expected.
using Bytes = std::vector<BYTE>;

/// Appends the n low bytes of v, least significant first (by shifts, whatever the host's order).
void PutLE(Bytes& out, std::uint64_t v, int n);
/// v as 2, 4 or 8 little-endian bytes.
inline void Put16(Bytes& out, std::uint16_t v) { PutLE(out, v, 2); }
inline void Put32(Bytes& out, std::uint32_t v) { PutLE(out, v, 4); }
inline void Put64(Bytes& out, std::uint64_t v) { PutLE(out, v, 8); }
/// The IEEE single-precision bits of f, as the archive stores a float.
void PutFloat(Bytes& out, float f);
/// The IEEE double-precision bits of d, as the archive stores a double.
void PutDouble(Bytes& out, double d);

/// 32-bit little-endian words one after the other.
Bytes Dwords(std::initializer_list<std::uint32_t> values);
/// Floats one after the other.
Bytes Floats(std::initializer_list<float> values);
/// Doubles one after the other.
Bytes Doubles(std::initializer_list<double> values);
/// A CString of fewer than 255 bytes as the archive stores it: a length byte, then the
/// bytes. Longer text throws std::length_error: a test spells its longer prefix out.
Bytes ShortString(std::string_view text);
/// The value layer's array header: the word 0x80000001, then an 8-byte count.
Bytes Header(std::uint64_t count);
/// The parts one after the other.
Bytes Cat(std::initializer_list<Bytes> parts);
/// Upper-case hex pairs separated by single spaces ("0A FF 00"), for readable failures.
std::string Hex(std::span<const BYTE> bytes);

/// The bytes that write(CArchive&) puts into a storing archive over memory.
template <typename Write>
Bytes Stored(Write&& write) {
  CMemFile file;
  CArchive ar(&file, CArchive::store);
  write(ar);
  ar.Close();
  const auto data = file.GetData();
  return Bytes(data.begin(), data.end());
}

/// The bytes an object's Serialize stores.
template <typename T>
Bytes Store(T&& object) {
  return Stored([&](CArchive& ar) { object.Serialize(ar); });
}

/// A loading archive over a private copy of some bytes, as if a file held them.
class LoadingArchive {
 public:
  /// bufferSize is the archive's buffer; a small one makes loads cross refills.
  explicit LoadingArchive(Bytes bytes, int bufferSize = 4096);
  LoadingArchive(const LoadingArchive&) = delete;
  LoadingArchive& operator=(const LoadingArchive&) = delete;

  CArchive& Archive() { return m_ar; }
  /// How many bytes the archive has consumed so far.
  std::size_t Consumed() const { return static_cast<std::size_t>(m_ar.GetPosition()); }

 private:
  Bytes m_bytes;
  CMemFile m_file;
  CArchive m_ar;
};

/// Loads object from bytes with its Serialize; returns how many bytes it consumed.
template <typename T>
std::size_t Load(const Bytes& bytes, T& object) {
  LoadingArchive in(bytes);
  object.Serialize(in.Archive());
  return in.Consumed();
}

/// The m_cause of the CArchiveException fn throws, or -1 when it throws none.
template <typename Fn>
int ArchiveCause(Fn&& fn) {
  try {
    fn();
  } catch (const CArchiveException& e) {
    return e.m_cause;
  }
  return -1;
}

}  // namespace corlith::test
