#include "qellib10/platform/drawing/wide_pen.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace qel {
namespace {

constexpr std::int64_t kPixel = 256;
// Edges are sampled just before the middle of a row.
constexpr std::int64_t kSample = kPixel / 2 - 1;
// The largest distance of the polygon inside the circle, in pixels.
constexpr double kTolerance = 0.1;
// All products of coordinates are exact up to this limit, in pixels.
constexpr int kFarthest = 1 << 20;

// The first row or pixel whose middle is at or after a place.
constexpr std::int64_t FirstFrom(std::int64_t place) noexcept { return (place + kSample) >> 8; }

std::int64_t Rounded(double pixels) noexcept { return std::llrint(pixels * kPixel); }

// Divisors are above 0.
constexpr std::int64_t Floored(std::int64_t dividend, std::int64_t divisor) noexcept {
    return dividend / divisor - (dividend % divisor < 0 ? 1 : 0);
}

bool IsNear(const POINT& at) noexcept {
    return at.x >= -kFarthest && at.x <= kFarthest && at.y >= -kFarthest && at.y <= kFarthest;
}

// An even number: the polygon is symmetric.
std::size_t CornersOf(double radius) noexcept {
    const auto corners = static_cast<std::size_t>(std::ceil(2 * M_PI / std::acos(1 - kTolerance / radius)));
    return corners + corners % 2;
}

}  // namespace

// Calls step with each row from low up to (not including) high that an edge crosses, and with the first pixel after it.
template <class Step>
void WidePen::ForEachRow(Place from, Place to, std::int64_t low, std::int64_t high, const Step& step) {
    if (from.y > to.y) std::swap(from, to);
    const std::int64_t first = std::max(low, FirstFrom(from.y)), end = std::min(high, FirstFrom(to.y));
    if (first >= end) return;
    const std::int64_t width = to.x - from.x, height = to.y - from.y;
    const auto way = (first * kPixel + kSample - from.y) * width;
    std::int64_t x = Floored(way, height), rest = way - x * height;
    const std::int64_t stepX = Floored(width * kPixel, height), stepRest = width * kPixel - stepX * height;
    for (std::int64_t row = first; row < end; ++row) {
        step(row, FirstFrom(from.x + x));
        x += stepX;
        if ((rest += stepRest) >= height) {
            rest -= height;
            ++x;
        }
    }
}

WidePen::WidePen(int width) : m_nWidth(width) {
    const double radius = width / 2.0;
    const std::size_t corners = CornersOf(radius);
    for (std::size_t i = 0; i < corners; ++i) {
        const double angle = 2 * M_PI * static_cast<double>(i) / static_cast<double>(corners);
        m_aryCorner.push_back({Rounded(radius * std::cos(angle)), Rounded(radius * std::sin(angle))});
    }
    const Place middle = MiddleOf({0, 0});
    for (std::size_t i = 0; i < corners; ++i) {
        m_aryFirst.push_back(m_aryCrossing.size());
        const Place &from = m_aryCorner[i], &to = m_aryCorner[Next(i)];
        ForEachRow({middle.x + from.x, middle.y + from.y}, {middle.x + to.x, middle.y + to.y}, -width, width,
                   [this](std::int64_t row, std::int64_t x) {
                       m_aryCrossing.push_back({static_cast<int>(row), static_cast<int>(x)});
                   });
    }
    m_aryFirst.push_back(m_aryCrossing.size());
}

bool WidePen::Draw(const Raster& raster, const POINT& from, const POINT& to, std::uint32_t value) {
    if (!IsNear(from) || !IsNear(to)) return false;
    const int reach = m_nWidth / 2 + 1;  // pixels that it can cover, to each side
    const int left = std::min(from.x, to.x) - reach, right = std::max(from.x, to.x) + reach;
    const int top = std::max(raster.top, std::min(from.y, to.y) - reach);
    const int bottom = std::min(raster.bottom, std::max(from.y, to.y) + reach + 1);
    if (top >= bottom || left >= raster.right || right < raster.left) return true;
    if (left < raster.left || right >= raster.right) return false;

    constexpr Span kEmpty{std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()};
    m_nTop = top;
    m_aryRow.assign(static_cast<std::size_t>(bottom - top), kEmpty);
    AddLine(from, to);
    std::uint32_t* row = raster.At(0, top);
    for (const Span& span : m_aryRow) {
        for (std::int64_t x = span.left; x < span.right; ++x) row[x] = value;
        row += raster.stride;
    }
    return true;
}

void WidePen::AddLine(const POINT& from, const POINT& to) {
    Place along{std::int64_t{to.x} - from.x, std::int64_t{to.y} - from.y};
    if (along.x == 0 && along.y == 0) along.x = 1;
    const double length = std::hypot(along.x, along.y), radius = m_nWidth / 2.0;
    const auto dx = static_cast<double>(along.x) / length, dy = static_cast<double>(along.y) / length;
    const Place side{Rounded(-dy * radius), Rounded(dx * radius)}, other{-side.x, -side.y};
    const Place start = MiddleOf(from), end = MiddleOf(to);
    AddEdge(start + side, end + side);
    AddEdge(start + other, end + other);
    AddEnd(to, along, side);
    AddEnd(from, {-along.x, -along.y}, other);
}

// Half of the polygon, from one side of the line to the other.
void WidePen::AddEnd(const POINT& at, const Place& outward, const Place& side) {
    // If an edge is parallel to the line, either corner works except for an occasional pixel: these are Cairo's
    // choices.
    const bool isForward = outward.x > 0 || (outward.x == 0 && outward.y > 0);
    const std::size_t first = CornerTouched(outward, isForward ? Tie::kEarlier : Tie::kLater);
    const std::size_t last = CornerTouched({-outward.x, -outward.y}, isForward ? Tie::kLater : Tie::kEarlier);
    const Place middle = MiddleOf(at);
    AddEdge(middle + Place{-side.x, -side.y}, middle + m_aryCorner[first]);
    if (first <= last) {
        AddCrossings(at, first, last);
    } else {
        AddCrossings(at, first, m_aryCorner.size());
        AddCrossings(at, 0, last);
    }
    AddEdge(middle + m_aryCorner[last], middle + side);
}

// The corner at which a line with that direction touches the polygon; the polygon is on the side of growing angles.
std::size_t WidePen::CornerTouched(const Place& direction, Tie tie) const noexcept {
    const double angle = std::atan2(-direction.x, direction.y) / (2 * M_PI);
    const auto corners = static_cast<double>(m_aryCorner.size());
    const auto nearest = static_cast<std::size_t>(std::lround((angle + 1) * corners)) % m_aryCorner.size();
    for (const std::size_t corner : {nearest, Next(nearest)}) {
        if (IsTouched(corner, direction, tie)) return corner;
    }
    return Before(nearest);  // places are rounded by less than the angle of an edge
}

bool WidePen::IsTouched(std::size_t corner, const Place& direction, Tie tie) const noexcept {
    const Place &before = m_aryCorner[Before(corner)], &at = m_aryCorner[corner], &next = m_aryCorner[Next(corner)];
    // Above 0 if the line turns toward growing angles relative to the edge.
    const auto turn = [&](const Place& from, const Place& to) {
        return (to.x - from.x) * direction.y - (to.y - from.y) * direction.x;
    };
    const std::int64_t fromBefore = turn(before, at), toNext = turn(at, next);
    return tie == Tie::kEarlier ? fromBefore > 0 && toNext <= 0 : fromBefore >= 0 && toNext < 0;
}

void WidePen::AddCrossings(const POINT& at, std::size_t firstEdge, std::size_t endEdge) {
    for (std::size_t i = m_aryFirst[firstEdge]; i < m_aryFirst[endEdge]; ++i) {
        const Crossing& crossing = m_aryCrossing[i];
        const std::int64_t row = std::int64_t{at.y} + crossing.row - m_nTop;
        if (row >= 0 && row < std::ssize(m_aryRow)) Widen(row, std::int64_t{at.x} + crossing.x);
    }
}

void WidePen::AddEdge(const Place& from, const Place& to) {
    ForEachRow(from, to, m_nTop, m_nTop + std::ssize(m_aryRow),
               [this](std::int64_t row, std::int64_t x) { Widen(row - m_nTop, x); });
}

void WidePen::Widen(std::int64_t row, std::int64_t x) noexcept {
    Span& span = m_aryRow[static_cast<std::size_t>(row)];
    span.left = std::min(span.left, x);
    span.right = std::max(span.right, x);
}

// Odd widths are centred on the pixel's middle, even ones on its corner.
WidePen::Place WidePen::MiddleOf(const POINT& at) const noexcept {
    const std::int64_t middle = m_nWidth % 2 != 0 ? kPixel / 2 : 0;
    return {at.x * kPixel + middle, at.y * kPixel + middle};
}

}  // namespace qel
