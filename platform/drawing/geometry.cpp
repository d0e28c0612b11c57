#include "qellib10/platform/drawing/geometry.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "qellib10/platform/wrapped.h"

void CPoint::Offset(int dx, int dy) noexcept {
    x = qel::WrappedSum(x, dx);
    y = qel::WrappedSum(y, dy);
}

CRect::CRect(const POINT& topLeft, const SIZE& size) noexcept
    : RECT{topLeft.x, topLeft.y, qel::WrappedSum(topLeft.x, size.cx), qel::WrappedSum(topLeft.y, size.cy)} {}

int CRect::Width() const noexcept { return qel::WrappedDifference(right, left); }

int CRect::Height() const noexcept { return qel::WrappedDifference(bottom, top); }

BOOL CRect::PtInRect(const POINT& point) const noexcept {
    return point.x >= left && point.x < right && point.y >= top && point.y < bottom;
}

void CRect::OffsetRect(int dx, int dy) noexcept {
    left = qel::WrappedSum(left, dx);
    top = qel::WrappedSum(top, dy);
    right = qel::WrappedSum(right, dx);
    bottom = qel::WrappedSum(bottom, dy);
}

void CRect::InflateRect(int dx, int dy) noexcept {
    left = qel::WrappedDifference(left, dx);
    top = qel::WrappedDifference(top, dy);
    right = qel::WrappedSum(right, dx);
    bottom = qel::WrappedSum(bottom, dy);
}

void CRect::NormalizeRect() noexcept {
    if (right < left) std::swap(left, right);
    if (bottom < top) std::swap(top, bottom);
}

BOOL CRect::IntersectRect(const RECT& a, const RECT& b) noexcept {
    const CRect common(std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                       std::min(a.bottom, b.bottom));
    *this = common.IsRectEmpty() ? CRect() : common;
    return !IsRectEmpty();
}

int MulDiv(int number, int numerator, int denominator) noexcept {
    if (denominator == 0) return -1;
    const LONGLONG product = LONGLONG{number} * numerator;
    const LONGLONG divisor = denominator;
    const LONGLONG half = (divisor < 0 ? -divisor : divisor) / 2;
    const LONGLONG quotient = (product < 0 ? product - half : product + half) / divisor;
    return quotient > std::numeric_limits<int>::max() || quotient < std::numeric_limits<int>::min()
               ? -1
               : static_cast<int>(quotient);
}
