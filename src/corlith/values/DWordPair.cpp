#include <corlith/values/DWordPair.h>

#include <algorithm>
#include <functional>

void CDWordPair::Serialize(CArchive& ar) {
  // 8 bytes each: the values are pointer-width on the 64-bit builds the archives come from.
  if (ar.IsStoring()) {
    corlith::StoreVersion(ar, m_nVersion);
    ar << static_cast<ULONGLONG>(dw1) << static_cast<ULONGLONG>(dw2);
  } else if (corlith::LoadVersion(ar, m_nVersion)) {
    ULONGLONG a = 0;
    ULONGLONG b = 0;
    ar >> a >> b;
    dw1 = static_cast<DWORD_PTR>(a);
    dw2 = static_cast<DWORD_PTR>(b);
  }
}

int CDWordPairSet::Find(const CDWordPair& p) const { return static_cast<int>(m_index.Find(*this, p)); }

BOOL CDWordPairSet::Add(CDWordPair p) {
  if (IsExist(p)) return FALSE;
  m_index.Appended(*this, CArray<CDWordPair, CDWordPair&>::Add(p));
  return TRUE;
}

std::size_t corlith::detail::DWordPairIndexTraits::Hash(const CDWordPair& p) {
  // Either order is the same pair: hash the smaller value, then the larger.
  const auto [low, high] = std::minmax(p.dw1, p.dw2);
  const std::size_t h = std::hash<DWORD_PTR>{}(low);
  return h ^ (std::hash<DWORD_PTR>{}(high) + 0x9E3779B97F4A7C15ull + (h << 6) + (h >> 2));
}
