// The rectangle arithmetic of the double and float classes, written once. Union and
// intersection see a rectangle as its four edges in a y-up plane (top is the larger y)
// and work edge by edge; the other helpers work on the anchor-and-extent classes
// (CRectD, CRectF, CRectFL: fields left, top, width, height).
//
// What the classes make of a union or intersection differs, on purpose: CRectD and
// CRectF store the result as anchor and extents and call it empty when an extent is not
// positive; CFRect takes its fields as stored (never normalised) and calls a result empty
// only when a side is zero; CRectF's intersection comes out with top and bottom
// exchanged, and both float intersections are all zero unless the inputs overlap.
#pragma once

#include <algorithm>

namespace corlith {

/// Four edges; top is meant to be the larger y, but nothing here requires it.
template <typename T>
struct RectEdges {
  T left;
  T top;
  T right;
  T bottom;
};

/// The box around a and b: smaller left and bottom, larger top and right. Empty or
/// inverted inputs take part like any other (no input is skipped).
template <typename T>
constexpr RectEdges<T> UniteEdges(const RectEdges<T>& a, const RectEdges<T>& b) {
  return {std::min(a.left, b.left), std::max(a.top, b.top), std::max(a.right, b.right),
          std::min(a.bottom, b.bottom)};
}

/// The overlap of a and b: larger left and bottom, smaller top and right. Where they do
/// not overlap, right < left or top < bottom; what that means is the caller's rule.
template <typename T>
constexpr RectEdges<T> IntersectEdges(const RectEdges<T>& a, const RectEdges<T>& b) {
  return {std::max(a.left, b.left), std::min(a.top, b.top), std::min(a.right, b.right),
          std::max(a.bottom, b.bottom)};
}

/// The edges of an anchor-and-extent rectangle: its Left, Top, Right and Bottom, in the
/// rectangle's own number type.
template <class RECT>
constexpr auto EdgesOf(const RECT& r) -> RectEdges<decltype(r.Left())> {
  return {r.Left(), r.Top(), r.Right(), r.Bottom()};
}

/// Stores edges into an anchor-and-extent rectangle: left and top as they are, width
/// right - left, height top - bottom (negative when the edges are inverted).
template <class RECT, typename T>
constexpr void SetFromEdges(RECT& r, const RectEdges<T>& e) {
  r.left = e.left;
  r.top = e.top;
  r.width = e.right - e.left;
  r.height = e.top - e.bottom;
}

/// Grows an anchor-and-extent rectangle by dx on the left and on the right and by dy on
/// the top and on the bottom (shrinks it for negative amounts).
template <class RECT, typename T>
constexpr void InflateAnchored(RECT& r, T dx, T dy) {
  r.left -= dx;
  r.width += 2 * dx;
  r.top += dy;
  r.height += 2 * dy;
}

/// Scales an anchor-and-extent rectangle about its centre to dPercent/100 of its size: a
/// percentage, deliberately, where CRectD::DeflateRect(double) and CFRect take fractions.
/// The margins are computed in double and narrowed to the field's type.
template <class RECT>
constexpr void InflateByPercent(RECT& r, double dPercent) {
  using Field = decltype(r.left);
  const double k = dPercent / 100.0 - 1.0;
  InflateAnchored(r, static_cast<Field>(k * r.width / 2), static_cast<Field>(k * r.height / 2));
}

/// Every field of an anchor-and-extent rectangle times f, computed in double and
/// narrowed back to the field's type.
template <class RECT>
constexpr void ScaleAnchored(RECT& r, double f) {
  using Field = decltype(r.left);
  r.left = static_cast<Field>(r.left * f);
  r.top = static_cast<Field>(r.top * f);
  r.width = static_cast<Field>(r.width * f);
  r.height = static_cast<Field>(r.height * f);
}

/// Strictly inside an anchor-and-extent rectangle: a point on an edge is outside.
template <class RECT, typename T>
constexpr bool StrictlyInside(const RECT& r, T x, T y) {
  return r.Left() < x && x < r.Right() && r.Bottom() < y && y < r.Top();
}

/// Within the band of total width w centred on the outline, strict on both sides: inside
/// the rectangle grown by w/2 and not inside it shrunk by w/2.
template <class RECT, typename T>
bool InOutlineBand(const RECT& r, T x, T y, T w) {
  RECT outer(r);
  InflateAnchored(outer, w / 2, w / 2);
  RECT inner(r);
  InflateAnchored(inner, -(w / 2), -(w / 2));
  return StrictlyInside(outer, x, y) && !StrictlyInside(inner, x, y);
}

}  // namespace corlith
