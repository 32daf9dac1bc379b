#include <corlith/values/Point3D.h>

void CPoint3D::Serialize(CArchive& ar) {
  if (ar.IsStoring()) {
    corlith::StoreVersion(ar, m_nVersion);
    ar << x << y << z;
  } else if (corlith::LoadVersion(ar, m_nVersion)) {
    ar >> x >> y >> z;
  }
}
