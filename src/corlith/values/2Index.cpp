#include <corlith/values/2Index.h>

void C2Index::Serialize(CArchive& ar) { corlith::SerializeFields(ar, 1, index1, index2); }

int C2IndexArray::FindElement(int i1, int i2, int bDontCareOrder) const {
  for (INT_PTR i = 0; i < GetSize(); ++i) {
    const C2Index* p = GetAt(i);
    if (!p) continue;
    if (bDontCareOrder ? p->IsMatch_DontCareOrder(i1, i2) : p->IsMatch(i1, i2)) return static_cast<int>(i);
  }
  return -1;
}
