#include "qellib10/platform/drawing/geometry.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "qellib10/platform/wrapped.h"

CSize CSize::operator+(const SIZE& by) const noexcept {
    return {qel::WrappedSum(cx, by.cx), qel::WrappedSum(cy, by.cy)};
}

CSize CSize::operator-(const SIZE& by) const noexcept {
    return {qel::WrappedDifference(cx, by.cx), qel::WrappedDifference(cy, by.cy)};
}

CPoint CPoint::operator+(const SIZE& by) const noexcept {
    return {qel::WrappedSum(x, by.cx), qel::WrappedSum(y, by.cy)};
}

CPoint CPoint::operator-(const SIZE& by) const noexcept {
    return {qel::WrappedDifference(x, by.cx), qel::WrappedDifference(y, by.cy)};
}

CSize CPoint::operator-(const POINT& from) const noexcept {
    return {qel::WrappedDifference(x, from.x), qel::WrappedDifference(y, from.y)};
}

void CPoint::Offset(int dx, int dy) noexcept {
    x = qel::WrappedSum(x, dx);
    y = qel::WrappedSum(y, dy);
}

CRect::CRect(const POINT& topLeft, const SIZE& size) noexcept
    : RECT{topLeft.x, topLeft.y, qel::WrappedSum(topLeft.x, size.cx), qel::WrappedSum(topLeft.y, size.cy)} {}

int CRect::Width() const noexcept { return qel::WrappedDifference(right, left); }

int CRect::Height() const noexcept { return qel::WrappedDifference(bottom, top); }

CPoint CRect::CenterPoint() const noexcept {
    const auto middle = [](LONGLONG a, LONGLONG b) { return static_cast<int>((a + b) / 2); };
    return {middle(left, right), middle(top, bottom)};
}

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

void CRect::DeflateRect(int dx, int dy) noexcept {
    InflateRect(qel::WrappedDifference(0, dx), qel::WrappedDifference(0, dy));
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

BOOL CRect::UnionRect(const RECT& a, const RECT& b) noexcept {
    const CRect first(a), second(b);
    if (first.IsRectEmpty() || second.IsRectEmpty()) {
        *this = !first.IsRectEmpty() ? first : !second.IsRectEmpty() ? second : CRect();
    } else {
        *this = CRect(std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
                      std::max(a.bottom, b.bottom));
    }
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
