#include "qellib10/platform/drawing/smooth_curve.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "qellib10/platform/drawing/cairo_shape.h"

namespace qel {
namespace {

constexpr int kParts = 16;  // of a column
constexpr float kNothing = std::numeric_limits<float>::infinity();
constexpr std::uint32_t kUnusedByte = 0xFF000000;  // as where Cairo draws

std::uint32_t Mixed(std::uint32_t below, std::uint32_t above, std::uint32_t shade) {
    const std::uint32_t sum = below * (255 - shade) + above * shade + 127;
    return (sum + 1 + (sum >> 8U)) >> 8U;  // divided by 255
}

}  // namespace

SmoothCurve::SmoothCurve(const Raster& raster, double width)
    : m_raster(raster),
      m_nReach(static_cast<int>(width / 2 * kParts)),
      m_nParts(std::max(0, raster.right - raster.left) * kParts + 2 * m_nReach) {
    for (int part = 0; part <= m_nReach; ++part) {
        const double beside = double(part) / kParts;
        m_half.push_back(static_cast<float>(std::sqrt(std::max(0.0, width * width / 4 - beside * beside))));
    }
    const auto parts = static_cast<std::size_t>(m_nParts);
    m_low.assign(parts, kNothing);
    m_high.assign(parts, -kNothing);
    m_wideLow.assign(parts, kNothing);
    m_wideHigh.assign(parts, -kNothing);
    const auto rows = static_cast<std::size_t>(std::max(0, raster.bottom - raster.top));
    m_change.assign(rows + 1, 0);
    m_part.assign(rows + 1, 0);
    m_shade.assign(rows * static_cast<std::size_t>(std::max(0, raster.right - raster.left)), 0);
}

void SmoothCurve::Draw(std::span<const ShapePoint> corners, COLORREF color, double opacity) {
    if (m_shade.empty()) return;
    m_shaded = CRect(m_raster.right, m_raster.bottom, m_raster.left, m_raster.top);
    while (!corners.empty()) {
        if (!IsPlaced(corners.front())) {
            corners = corners.subspan(1);
            continue;
        }
        std::size_t end = 1;
        int direction = 0;
        for (; end < corners.size() && IsPlaced(corners[end]); ++end) {
            const double step = corners[end].x - corners[end - 1].x;
            const int way = step > 0 ? 1 : step < 0 ? -1 : 0;
            if (way != 0 && direction != 0 && way != direction) break;
            if (way != 0) direction = way;
        }
        const bool goesBack = end < corners.size() && IsPlaced(corners[end]);
        if (end > 1) AddRun(corners.first(end));
        corners = corners.subspan(goesBack && end > 1 ? end - 1 : end);
    }
    Blend(color, opacity);
}

void SmoothCurve::AddRun(std::span<const ShapePoint> run) {
    m_nFirst = m_nParts;
    m_nLast = -1;
    const bool isLeftward = run.front().x > run.back().x;
    for (std::size_t i = 1; i < run.size(); ++i)
        isLeftward ? AddSegment(run[i], run[i - 1]) : AddSegment(run[i - 1], run[i]);
    if (m_nLast < m_nFirst) return;
    Widen();
    Shade();
    std::fill(m_low.begin() + m_nFirst, m_low.begin() + m_nLast + 1, kNothing);
    std::fill(m_high.begin() + m_nFirst, m_high.begin() + m_nLast + 1, -kNothing);
}

// From left to right.
void SmoothCurve::AddSegment(ShapePoint from, ShapePoint to) {
    from = {NearCoordinate(from.x), NearCoordinate(from.y)};
    to = {NearCoordinate(to.x), NearCoordinate(to.y)};
    // Parts count from the leftmost one that the pen reaches into the clip from.
    const auto partOf = [this](double x) { return (x - m_raster.left) * kParts + m_nReach; };
    double first = partOf(from.x), last = partOf(to.x);
    if (!(last >= 0 && first < m_nParts)) return;
    const double slope = last > first ? (to.y - from.y) / (last - first) : 0;
    const double start = first, y = from.y;
    if (first < 0) first = 0;
    bool isCut = false;
    if (last >= m_nParts) {
        last = m_nParts;
        isCut = true;
    }
    const auto extend = [this](int part, double a, double b) {
        float &low = m_low[static_cast<std::size_t>(part)], &high = m_high[static_cast<std::size_t>(part)];
        low = std::min(low, static_cast<float>(std::min(a, b)));
        high = std::max(high, static_cast<float>(std::max(a, b)));
    };
    const int begin = static_cast<int>(first), end = isCut ? m_nParts - 1 : static_cast<int>(last);
    m_nFirst = std::min(m_nFirst, begin);
    m_nLast = std::max(m_nLast, end);
    double before = first > start ? y + slope * (first - start) : y;
    for (int part = begin; part < end; ++part) {
        const double next = y + slope * (part + 1 - start);
        extend(part, before, next);
        before = next;
    }
    extend(end, before, isCut ? y + slope * (last - start) : to.y);
}

// The intervals of the line widened by the disc of the pen.
void SmoothCurve::Widen() {
    const int first = std::max(0, m_nFirst - m_nReach), last = std::min(m_nParts - 1, m_nLast + m_nReach);
    std::fill(m_wideLow.begin() + first, m_wideLow.begin() + last + 1, kNothing);
    std::fill(m_wideHigh.begin() + first, m_wideHigh.begin() + last + 1, -kNothing);
    for (int beside = -m_nReach; beside <= m_nReach; ++beside) {
        const float half = m_half[static_cast<std::size_t>(std::abs(beside))];
        const int from = std::max(first, m_nFirst - beside), to = std::min(last, m_nLast - beside);
        float* const wideLow = m_wideLow.data();
        float* const wideHigh = m_wideHigh.data();
        const float* const low = m_low.data() + beside;
        const float* const high = m_high.data() + beside;
        for (int part = from; part <= to; ++part) {
            wideLow[part] = std::min(wideLow[part], low[part] - half);
            wideHigh[part] = std::max(wideHigh[part], high[part] + half);
        }
    }
    m_nFirst = std::max(0, m_nFirst);
}

// How much of each pixel the intervals cover.
void SmoothCurve::Shade() {
    const int left = std::max(0, m_nFirst - m_nReach), right = std::min(m_nParts - 1, m_nLast + m_nReach);
    const int columns = m_raster.right - m_raster.left, rows = m_raster.bottom - m_raster.top;
    const int firstColumn = std::max(0, (left - m_nReach) / kParts);
    const int lastColumn = std::min(columns - 1, (right - m_nReach) / kParts);
    const auto top = static_cast<float>(m_raster.top), height = static_cast<float>(rows);
    for (int column = firstColumn; column <= lastColumn; ++column) {
        int least = rows, most = -1;
        for (int i = 0; i < kParts; ++i) {
            const int part = column * kParts + m_nReach + i;
            if (part < left || part > right) continue;
            const float from = std::max(0.0F, m_wideLow[static_cast<std::size_t>(part)] - top);
            const float to = std::min(height, m_wideHigh[static_cast<std::size_t>(part)] - top);
            if (!(from < to)) continue;
            const int begin = static_cast<int>(from), end = std::min(rows - 1, static_cast<int>(to));
            least = std::min(least, begin);
            most = std::max(most, end);
            if (begin == end) {
                m_part[static_cast<std::size_t>(begin)] += to - from;
                continue;
            }
            m_part[static_cast<std::size_t>(begin)] += static_cast<float>(begin + 1) - from;
            m_part[static_cast<std::size_t>(end)] += to - static_cast<float>(end);
            m_change[static_cast<std::size_t>(begin) + 1] += 1;
            m_change[static_cast<std::size_t>(end)] -= 1;
        }
        if (most < 0) continue;
        float whole = 0;
        std::uint8_t* const shades = m_shade.data() + column;
        for (int row = least; row <= most; ++row) {
            const auto at = static_cast<std::size_t>(row);
            whole += m_change[at];
            const float share = std::min(1.0F, (whole + m_part[at]) / kParts);
            std::uint8_t& shade = shades[at * static_cast<std::size_t>(columns)];
            shade = std::max(shade, static_cast<std::uint8_t>(share * 255 + 0.5F));
            m_change[at] = m_part[at] = 0;
        }
        m_change[static_cast<std::size_t>(most) + 1] = 0;
        m_shaded = CRect(std::min<LONG>(m_shaded.left, m_raster.left + column),
                         std::min<LONG>(m_shaded.top, m_raster.top + least),
                         std::max<LONG>(m_shaded.right, m_raster.left + column + 1),
                         std::max<LONG>(m_shaded.bottom, m_raster.top + most + 1));
    }
}

void SmoothCurve::Blend(COLORREF color, double opacity) {
    const std::uint32_t red = GetRValue(color), green = GetGValue(color), blue = GetBValue(color);
    const auto opaque = static_cast<std::uint32_t>(opacity * 255 + 0.5);
    const auto columns = static_cast<std::size_t>(m_raster.right - m_raster.left);
    for (int y = m_shaded.top; y < m_shaded.bottom; ++y) {
        const std::uint8_t* const shades = m_shade.data() + static_cast<std::size_t>(y - m_raster.top) * columns;
        for (int x = m_shaded.left; x < m_shaded.right; ++x) {
            const std::uint32_t own = shades[x - m_raster.left];
            if (own == 0) continue;
            const std::uint32_t shade = opaque == 255 ? own : Mixed(0, opaque, own);
            std::uint32_t& pixel = *m_raster.At(x, y);
            pixel = kUnusedByte | Mixed(pixel >> 16U & 0xFFU, red, shade) << 16U |
                    Mixed(pixel >> 8U & 0xFFU, green, shade) << 8U | Mixed(pixel & 0xFFU, blue, shade);
        }
    }
}

}  // namespace qel
