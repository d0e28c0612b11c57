#pragma once

#include "qellib10/platform/export.h"
#include "qellib10/platform/types.h"

struct POINT {
    LONG x;
    LONG y;
};

struct SIZE {
    LONG cx;
    LONG cy;
};

/// A rectangle given by its edges; the right and bottom edges are not included.
struct RECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};

/// A width and a height. Sums wrap at 32 bits.
class QELLIB10_API CSize : public SIZE {
public:
    constexpr CSize() noexcept : SIZE{0, 0} {}
    constexpr CSize(int width, int height) noexcept : SIZE{width, height} {}
    constexpr CSize(const SIZE& size) noexcept : SIZE(size) {}

    CSize operator+(const SIZE& by) const noexcept;
    CSize operator-(const SIZE& by) const noexcept;

    friend constexpr bool operator==(const CSize& a, const CSize& b) noexcept { return a.cx == b.cx && a.cy == b.cy; }
};

/// A position. Sums wrap at 32 bits.
class QELLIB10_API CPoint : public POINT {
public:
    constexpr CPoint() noexcept : POINT{0, 0} {}
    constexpr CPoint(int px, int py) noexcept : POINT{px, py} {}
    constexpr CPoint(const POINT& point) noexcept : POINT(point) {}

    void Offset(int dx, int dy) noexcept;
    void Offset(const POINT& by) noexcept { Offset(by.x, by.y); }
    CPoint operator+(const SIZE& by) const noexcept;
    CPoint operator-(const SIZE& by) const noexcept;
    CSize operator-(const POINT& from) const noexcept;  ///< the distance from there to here

    friend constexpr bool operator==(const CPoint& a, const CPoint& b) noexcept { return a.x == b.x && a.y == b.y; }
};

/// A rectangle with value semantics. Only NormalizeRect puts the edges in order. Sums and differences wrap at 32 bits,
/// so that edges read from a file never cause undefined behaviour.
class QELLIB10_API CRect : public RECT {
public:
    constexpr CRect() noexcept : RECT{0, 0, 0, 0} {}
    constexpr CRect(int l, int t, int r, int b) noexcept : RECT{l, t, r, b} {}
    constexpr CRect(const RECT& rect) noexcept : RECT(rect) {}
    CRect(const POINT& topLeft, const SIZE& size) noexcept;

    /// So that a rectangle can be passed where its address is expected.
    operator RECT*() noexcept { return this; }
    operator const RECT*() const noexcept { return this; }

    int Width() const noexcept;   ///< right - left
    int Height() const noexcept;  ///< bottom - top
    CSize Size() const noexcept { return {Width(), Height()}; }
    CPoint TopLeft() const noexcept { return {left, top}; }
    CPoint BottomRight() const noexcept { return {right, bottom}; }
    CPoint CenterPoint() const noexcept;  ///< truncated toward zero

    void SetRect(int l, int t, int r, int b) noexcept { *this = CRect(l, t, r, b); }
    void SetRectEmpty() noexcept { *this = CRect(); }
    /// Empty: right is not past left, or bottom not past top.
    BOOL IsRectEmpty() const noexcept { return right <= left || bottom <= top; }
    BOOL PtInRect(const POINT& point) const noexcept;

    void OffsetRect(int dx, int dy) noexcept;
    void OffsetRect(const POINT& by) noexcept { OffsetRect(by.x, by.y); }
    /// Moves every edge outward by @p dx and @p dy.
    void InflateRect(int dx, int dy) noexcept;
    void DeflateRect(int dx, int dy) noexcept;  ///< inward
    /// Swaps edges so that width and height are not negative.
    void NormalizeRect() noexcept;
    /// Becomes the intersection of both, or the empty rectangle 0,0,0,0. @return 0 if it is empty
    BOOL IntersectRect(const RECT& a, const RECT& b) noexcept;
    /// Becomes the smallest rectangle around both; an empty one is ignored. @return 0 if the result is empty
    BOOL UnionRect(const RECT& a, const RECT& b) noexcept;

    friend constexpr bool operator==(const CRect& a, const CRect& b) noexcept {
        return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
    }
};

/// @p number * @p numerator / @p denominator, rounded to the nearest integer, halves away from zero.
/// @return -1 for a denominator of 0 or a result outside 32 bits
QELLIB10_API int MulDiv(int number, int numerator, int denominator) noexcept;
