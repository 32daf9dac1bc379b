#include <corlith/values/4PointD.h>

void C4PointD::SetData(const CRectD& r) {
  pt1 = r.LeftTop();
  pt2 = r.LeftBtm();
  pt3 = r.RightBtm();
  pt4 = r.RightTop();
}

void C4PointDArray::Mirror(int nAxis) {
  for (C4PointD* p : *this)
    if (p) p->Mirror(nAxis);
}

void C4PointDArray::MirrorOfAxis(int nAxis) {
  for (C4PointD* p : *this)
    if (p) p->MirrorOfAxis(nAxis);
}

void C4PointDArray::Translate(double dx, double dy, double dDegrees) {
  for (C4PointD* p : *this)
    if (p) p->Translate(dx, dy, dDegrees);
}
