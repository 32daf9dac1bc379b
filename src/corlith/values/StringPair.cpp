#include <corlith/values/StringPair.h>

#include <algorithm>

int CStringPair::operator==(const CStringPair& o) const {
  return (first == o.first && second == o.second) || (first == o.second && second == o.first);
}

void CStringPair::Serialize(CArchive& ar) { corlith::SerializeFields(ar, m_nVersion, first, second); }

int CStringStringArrayPair::operator==(const CStringStringArrayPair& o) const {
  return string == o.string && list.GetSize() == o.list.GetSize() &&
         std::equal(list.begin(), list.end(), o.list.begin());
}

void CStringStringArrayPair::Serialize(CArchive& ar) {
  corlith::SerializeFields(ar, m_nVersion, string, list);
}

int CStringPairSet::Find(const CStringPair& p) const {
  for (INT_PTR i = 0; i < GetSize(); ++i) {
    const CStringPair* held = GetAt(i);
    if (held && *held == p) return static_cast<int>(i);
  }
  return -1;
}

BOOL CStringPairSet::Add(CStringPair* p) {
  if (!p || IsExist(*p)) return FALSE;
  CArray<CStringPair*, CStringPair*>::Add(p);
  return TRUE;
}
