// Shared by the archive fuzz targets: load from arbitrary bytes, accept only the
// archive exceptions, and store what was loaded again (which must always work).
#pragma once

#include <corlith/framework/Archive.h>
#include <corlith/framework/MemFile.h>

#include <cstdint>
#include <cstdlib>

namespace corlith::fuzz {

template <typename Load>
void LoadFromBytes(const std::uint8_t* data, std::size_t size, Load load) {
  // A memory file over the input; the archive buffer is small so refills happen.
  CMemFile file(const_cast<BYTE*>(data), static_cast<UINT>(size));
  CArchive ar(&file, CArchive::load, 128);
  try {
    load(ar);
  } catch (const CArchiveException& e) {
    // End of file, or a string longer than any CString: both are documented outcomes.
    if (e.m_cause != CArchiveException::endOfFile && e.m_cause != CArchiveException::genericException)
      std::abort();
  }
}

template <typename T>
void StoreAgain(T& value) {
  CMemFile file;
  CArchive ar(&file, CArchive::store);
  value.Serialize(ar);
  ar.Close();
}

}  // namespace corlith::fuzz
