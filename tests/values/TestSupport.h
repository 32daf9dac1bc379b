// Helpers shared by the value-layer tests: archives in memory and hex dumps.
#pragma once

#include <corlith/framework/Archive.h>
#include <corlith/framework/MemFile.h>
#include <corlith/values/UnitTolerance.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

namespace corlith::test {

using Bytes = std::vector<BYTE>;

/// The bytes an object stores.
template <typename T>
Bytes Store(T& value) {
  CMemFile file;
  {
    CArchive ar(&file, CArchive::store);
    value.Serialize(ar);
    ar.Close();
  }
  return Bytes(file.GetData().begin(), file.GetData().end());
}

/// Loads value from bytes; returns the count of bytes consumed.
template <typename T>
std::size_t Load(const Bytes& bytes, T& value) {
  CMemFile file(const_cast<BYTE*>(bytes.data()), static_cast<UINT>(bytes.size()));
  CArchive ar(&file, CArchive::load);
  value.Serialize(ar);
  return static_cast<std::size_t>(ar.GetPosition());
}

/// Little-endian byte builders.
inline void Put32(Bytes& b, std::uint32_t v) {
  for (int i = 0; i < 4; ++i) b.push_back(static_cast<BYTE>(v >> (8 * i)));
}
inline void Put64(Bytes& b, std::uint64_t v) {
  for (int i = 0; i < 8; ++i) b.push_back(static_cast<BYTE>(v >> (8 * i)));
}
inline void PutDouble(Bytes& b, double d) {
  std::uint64_t v;
  std::memcpy(&v, &d, 8);
  Put64(b, v);
}

/// The array header 0x80000001 and an 8-byte count.
inline Bytes Header(std::uint64_t n) {
  Bytes b;
  Put32(b, 0x80000001u);
  Put64(b, n);
  return b;
}
/// The parts one after the other.
inline Bytes Cat(std::initializer_list<Bytes> parts) {
  Bytes out;
  for (const Bytes& p : parts) out.insert(out.end(), p.begin(), p.end());
  return out;
}

/// Restores the shared tolerance when a test ends.
class ToleranceGuard {
 public:
  ToleranceGuard() : m_saved(CUnitTolerance::GetTolerance()) {}
  ~ToleranceGuard() { CUnitTolerance::SetTolerancewithValue(m_saved); }
  ToleranceGuard(const ToleranceGuard&) = delete;
  ToleranceGuard& operator=(const ToleranceGuard&) = delete;

 private:
  double m_saved;
};

}  // namespace corlith::test
