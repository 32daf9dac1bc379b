#include <corlith/values/DWordPair.h>

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

int CDWordPairSet::Find(const CDWordPair& p) const {
  for (INT_PTR i = 0; i < GetSize(); ++i) {
    if ((*this)[i] == p) return static_cast<int>(i);
  }
  return -1;
}

BOOL CDWordPairSet::Add(CDWordPair p) {
  if (IsExist(p)) return FALSE;
  CArray<CDWordPair, CDWordPair&>::Add(p);
  return TRUE;
}
