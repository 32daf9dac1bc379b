#include <corlith/test/Bytes.h>

#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace corlith::test {

void PutLE(Bytes& out, std::uint64_t v, int n) {
  for (int i = 0; i < n; ++i) out.push_back(static_cast<BYTE>(v >> (8 * i)));
}

void PutFloat(Bytes& out, float f) {
  std::uint32_t bits;
  std::memcpy(&bits, &f, sizeof bits);
  Put32(out, bits);
}

void PutDouble(Bytes& out, double d) {
  std::uint64_t bits;
  std::memcpy(&bits, &d, sizeof bits);
  Put64(out, bits);
}

Bytes Dwords(std::initializer_list<std::uint32_t> values) {
  Bytes out;
  for (std::uint32_t v : values) Put32(out, v);
  return out;
}

Bytes Floats(std::initializer_list<float> values) {
  Bytes out;
  for (float f : values) PutFloat(out, f);
  return out;
}

Bytes Doubles(std::initializer_list<double> values) {
  Bytes out;
  for (double d : values) PutDouble(out, d);
  return out;
}

Bytes ShortString(std::string_view text) {
  if (text.size() >= 0xFF) throw std::length_error("ShortString: 255 bytes or more take a longer prefix");
  Bytes out;
  out.push_back(static_cast<BYTE>(text.size()));
  for (char c : text) out.push_back(static_cast<BYTE>(c));
  return out;
}

Bytes Header(std::uint64_t count) {
  Bytes out;
  Put32(out, 0x80000001u);
  Put64(out, count);
  return out;
}

Bytes Cat(std::initializer_list<Bytes> parts) {
  Bytes out;
  for (const Bytes& part : parts) out.insert(out.end(), part.begin(), part.end());
  return out;
}

std::string Hex(std::span<const BYTE> bytes) {
  std::string out;
  char cell[4];
  for (BYTE b : bytes) {
    std::snprintf(cell, sizeof cell, "%02X ", b);
    out += cell;
  }
  if (!out.empty()) out.pop_back();
  return out;
}

LoadingArchive::LoadingArchive(Bytes bytes, int bufferSize)
    : m_bytes(std::move(bytes)),
      m_file(m_bytes.data(), static_cast<UINT>(m_bytes.size())),
      m_ar(&m_file, CArchive::load, bufferSize) {}

}  // namespace corlith::test
