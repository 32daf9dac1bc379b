// What C4PointD and C5PointD share: the operations on a fixed run of points, written
// once over a span of points.
#pragma once

#include <corlith/values/RectD.h>

#include <span>

namespace corlith::pointgroup {

/// Every pair of corresponding points tolerant-equal.
bool Equal(std::span<const CPointD> a, std::span<const CPointD> b);
/// Index of the point nearest p; on a tie the earlier index is kept.
int ClosestIndex(std::span<const CPointD> pts, const CPointD& p);
/// Bounding rectangle: left = min x, top = max y.
CRectD Bounds(std::span<const CPointD> pts);
void Mirror(std::span<CPointD> pts, int nAxis);
void MirrorOfAxis(std::span<CPointD> pts, int nAxis);
/// Rotates every point about the origin when the angle is not 0, then adds (dx, dy).
void Translate(std::span<CPointD> pts, double dx, double dy, double dDegrees);
/// Version word 1, then each point as a full CPointD record.
void Serialize(CArchive& ar, std::span<CPointD> pts);

}  // namespace corlith::pointgroup
