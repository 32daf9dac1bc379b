#include <corlith/values/5PointD.h>

void C5PointDArray::Serialize(CArchive& ar) {
  if (ar.IsLoading()) {
    DeleteAll();
    int skipped = 0;
    ar >> skipped;
  }
  corlith::SerializePointerArray<C5PointD>(ar, *this);
}
