// The framework's integer geometry: CPoint, CSize and CRect (LONG coordinates,
// y growing downwards as on screen). A rectangle includes its left and top edges and
// excludes its right and bottom ones; an empty rectangle has no width or no height.
#pragma once

#include <corlith/framework/Types.h>

#include <utility>

struct tagPOINT {
  LONG x;
  LONG y;
};
struct tagSIZE {
  LONG cx;
  LONG cy;
};
struct tagRECT {
  LONG left;
  LONG top;
  LONG right;
  LONG bottom;
};
using POINT = tagPOINT;
using SIZE = tagSIZE;
using RECT = tagRECT;
using LPRECT = RECT*;
using LPCRECT = const RECT*;

namespace corlith::detail {
// Coordinate arithmetic wraps at 32 bits as on the original platform, without the
// undefined behaviour of signed overflow.
constexpr LONG Wrap(long long v) { return static_cast<LONG>(static_cast<unsigned long long>(v)); }
constexpr LONG Add(LONG a, LONG b) { return Wrap(static_cast<long long>(a) + b); }
constexpr LONG Sub(LONG a, LONG b) { return Wrap(static_cast<long long>(a) - b); }
}  // namespace corlith::detail

class CSize : public tagSIZE {
 public:
  constexpr CSize() : tagSIZE{0, 0} {}
  constexpr CSize(int initCX, int initCY) : tagSIZE{initCX, initCY} {}
  constexpr CSize(SIZE s) : tagSIZE(s) {}
  constexpr bool operator==(const CSize& o) const { return cx == o.cx && cy == o.cy; }
  constexpr CSize operator+(CSize o) const {
    return {corlith::detail::Add(cx, o.cx), corlith::detail::Add(cy, o.cy)};
  }
  constexpr CSize operator-(CSize o) const {
    return {corlith::detail::Sub(cx, o.cx), corlith::detail::Sub(cy, o.cy)};
  }
  constexpr CSize operator-() const { return {corlith::detail::Sub(0, cx), corlith::detail::Sub(0, cy)}; }
  constexpr void SetSize(int x, int y) { cx = x, cy = y; }
};

class CPoint : public tagPOINT {
 public:
  constexpr CPoint() : tagPOINT{0, 0} {}
  constexpr CPoint(int initX, int initY) : tagPOINT{initX, initY} {}
  constexpr CPoint(POINT p) : tagPOINT(p) {}
  constexpr explicit CPoint(SIZE s) : tagPOINT{s.cx, s.cy} {}
  constexpr void Offset(int xOffset, int yOffset) {
    x = corlith::detail::Add(x, xOffset), y = corlith::detail::Add(y, yOffset);
  }
  constexpr void Offset(POINT p) { Offset(p.x, p.y); }
  constexpr void Offset(SIZE s) { Offset(s.cx, s.cy); }
  constexpr void SetPoint(int X, int Y) { x = X, y = Y; }
  constexpr bool operator==(const CPoint& o) const { return x == o.x && y == o.y; }
  constexpr CPoint& operator+=(SIZE s) { return Offset(s), *this; }
  constexpr CPoint& operator-=(SIZE s) { return *this = *this - s; }
  constexpr CPoint& operator+=(POINT p) { return Offset(p), *this; }
  constexpr CPoint& operator-=(POINT p) {
    return x = corlith::detail::Sub(x, p.x), y = corlith::detail::Sub(y, p.y), *this;
  }
  constexpr CPoint operator+(SIZE s) const {
    return {corlith::detail::Add(x, s.cx), corlith::detail::Add(y, s.cy)};
  }
  constexpr CPoint operator-(SIZE s) const {
    return {corlith::detail::Sub(x, s.cx), corlith::detail::Sub(y, s.cy)};
  }
  constexpr CPoint operator+(POINT p) const {
    return {corlith::detail::Add(x, p.x), corlith::detail::Add(y, p.y)};
  }
  /// The difference of two points is a size.
  constexpr CSize operator-(POINT p) const {
    return {corlith::detail::Sub(x, p.x), corlith::detail::Sub(y, p.y)};
  }
  constexpr CPoint operator-() const { return {corlith::detail::Sub(0, x), corlith::detail::Sub(0, y)}; }
};

class CRect : public tagRECT {
 public:
  constexpr CRect() : tagRECT{0, 0, 0, 0} {}
  constexpr CRect(int l, int t, int r, int b) : tagRECT{l, t, r, b} {}
  constexpr CRect(const RECT& r) : tagRECT(r) {}
  constexpr CRect(POINT topLeft, SIZE size)
      : tagRECT{topLeft.x, topLeft.y, corlith::detail::Add(topLeft.x, size.cx),
                corlith::detail::Add(topLeft.y, size.cy)} {}
  constexpr CRect(POINT topLeft, POINT bottomRight)
      : tagRECT{topLeft.x, topLeft.y, bottomRight.x, bottomRight.y} {}

  constexpr int Width() const { return corlith::detail::Sub(right, left); }
  constexpr int Height() const { return corlith::detail::Sub(bottom, top); }
  constexpr CSize Size() const { return {Width(), Height()}; }
  constexpr CPoint TopLeft() const { return {left, top}; }
  constexpr CPoint BottomRight() const { return {right, bottom}; }
  /// The middle, rounded toward zero per coordinate.
  constexpr CPoint CenterPoint() const {
    return {static_cast<int>((static_cast<long long>(left) + right) / 2),
            static_cast<int>((static_cast<long long>(top) + bottom) / 2)};
  }
  /// TRUE when the width or the height is zero or negative.
  constexpr BOOL IsRectEmpty() const { return right <= left || bottom <= top; }
  /// TRUE when all four coordinates are zero.
  constexpr BOOL IsRectNull() const { return left == 0 && top == 0 && right == 0 && bottom == 0; }
  /// Left and top edges inside, right and bottom edges outside.
  constexpr BOOL PtInRect(POINT p) const { return p.x >= left && p.x < right && p.y >= top && p.y < bottom; }
  constexpr BOOL EqualRect(const RECT& r) const {
    return left == r.left && top == r.top && right == r.right && bottom == r.bottom;
  }
  constexpr bool operator==(const CRect& r) const { return EqualRect(r); }

  constexpr void SetRect(int x1, int y1, int x2, int y2) { left = x1, top = y1, right = x2, bottom = y2; }
  constexpr void SetRectEmpty() { SetRect(0, 0, 0, 0); }
  constexpr void CopyRect(const RECT& r) { *this = CRect(r); }
  constexpr void OffsetRect(int x, int y) {
    using corlith::detail::Add;
    left = Add(left, x), right = Add(right, x), top = Add(top, y), bottom = Add(bottom, y);
  }
  constexpr void OffsetRect(POINT p) { OffsetRect(p.x, p.y); }
  constexpr void OffsetRect(SIZE s) { OffsetRect(s.cx, s.cy); }
  constexpr void MoveToXY(int x, int y) {
    OffsetRect(corlith::detail::Sub(x, left), corlith::detail::Sub(y, top));
  }
  /// Moves each side outwards by the given amounts (inwards when negative).
  constexpr void InflateRect(int l, int t, int r, int b) {
    using corlith::detail::Add;
    using corlith::detail::Sub;
    left = Sub(left, l), top = Sub(top, t), right = Add(right, r), bottom = Add(bottom, b);
  }
  constexpr void InflateRect(int x, int y) { InflateRect(x, y, x, y); }
  constexpr void InflateRect(SIZE s) { InflateRect(s.cx, s.cy); }
  constexpr void DeflateRect(int l, int t, int r, int b) {
    using corlith::detail::Add;
    using corlith::detail::Sub;
    left = Add(left, l), top = Add(top, t), right = Sub(right, r), bottom = Sub(bottom, b);
  }
  constexpr void DeflateRect(int x, int y) { DeflateRect(x, y, x, y); }
  constexpr void DeflateRect(SIZE s) { DeflateRect(s.cx, s.cy); }
  /// Swaps sides so that left <= right and top <= bottom.
  constexpr void NormalizeRect() {
    if (left > right) std::swap(left, right);
    if (top > bottom) std::swap(top, bottom);
  }
  /// The overlap of a and b; FALSE (and this rectangle emptied) when they do not overlap.
  BOOL IntersectRect(const RECT& a, const RECT& b);
  /// The smallest rectangle holding both; an empty operand is ignored. FALSE when the
  /// result is empty.
  BOOL UnionRect(const RECT& a, const RECT& b);

  constexpr CRect& operator+=(POINT p) { return OffsetRect(p), *this; }
  constexpr CRect& operator-=(POINT p) {
    return OffsetRect(corlith::detail::Sub(0, p.x), corlith::detail::Sub(0, p.y)), *this;
  }
  constexpr CRect operator+(POINT p) const {
    CRect r(*this);
    r.OffsetRect(p);
    return r;
  }
  /// Intersection and union, as IntersectRect and UnionRect.
  CRect operator&(const RECT& r) const;
  CRect operator|(const RECT& r) const;
};
