// Shared by the archive fuzz targets: load from arbitrary bytes, accept only the
// archive exceptions, and store what was loaded again (which must always work).
#pragma once

#include <corlith/test/Bytes.h>

#include <cstdint>
#include <cstdlib>

namespace corlith::fuzz {

template <typename Load>
void LoadFromBytes(const std::uint8_t* data, std::size_t size, Load load) {
  // A small archive buffer, so that loads cross refills.
  test::LoadingArchive in(test::Bytes(data, data + size), 128);
  try {
    load(in.Archive());
  } catch (const CArchiveException& e) {
    // End of file, or a string longer than any CString: both are documented outcomes.
    if (e.m_cause != CArchiveException::endOfFile && e.m_cause != CArchiveException::genericException)
      std::abort();
  }
}

template <typename T>
void StoreAgain(T& value) {
  test::Store(value);
}

}  // namespace corlith::fuzz
