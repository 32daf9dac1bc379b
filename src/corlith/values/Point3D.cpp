#include <corlith/values/Point3D.h>

void CPoint3D::Serialize(CArchive& ar) { corlith::SerializeFields(ar, m_nVersion, x, y, z); }
