#include "qellib10/platform/drawing/smooth_curve.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "qellib10/platform/drawing/cairo_shape.h"
#include "qellib10/platform/drawing/shade_mixer.h"

namespace qel {
namespace {

constexpr int kParts = 16;  // of a column
constexpr float kNothing = std::numeric_limits<float>::infinity();
constexpr std::uint32_t kUnusedByte = 0xFF000000;

// The largest whole number that is not above @p number.
int WholeOf(double number) {
    const int whole = static_cast<int>(number);
    return whole - (number < whole ? 1 : 0);
}

}  // namespace

SmoothCurve::SmoothCurve(const Raster& raster, double width)
    : m_raster(raster),
      m_nReach(static_cast<int>(width / 2 * kParts)),
      m_nColumns(std::max(0, raster.right - raster.left)),
      m_nRows(std::max(0, raster.bottom - raster.top)),
      m_nOrigin(raster.left * kParts - m_nReach),
      m_nParts(m_nColumns * kParts + 2 * m_nReach) {
    for (int part = 0; part <= m_nReach; ++part) {
        const double beside = double(part) / kParts;
        m_half.push_back(static_cast<float>(std::sqrt(std::max(0.0, width * width / 4 - beside * beside))));
    }
    const auto parts = static_cast<std::size_t>(m_nParts);
    m_low.assign(parts, kNothing);
    m_high.assign(parts, -kNothing);
    m_wideLow.assign(parts, kNothing);
    m_wideHigh.assign(parts, -kNothing);
    m_change.assign(static_cast<std::size_t>(m_nRows) + 1, 0);
    m_part.assign(static_cast<std::size_t>(m_nRows) + 1, 0);
    const auto tiles = static_cast<std::size_t>((m_nColumns + kTile - 1) / kTile);
    m_touched.resize(tiles);
    m_shade = std::make_unique_for_overwrite<std::uint8_t[]>(tiles * kTile * static_cast<std::size_t>(m_nRows));
}

void SmoothCurve::Draw(std::span<const ShapePoint> corners, COLORREF color, double opacity) {
    if (m_nColumns == 0 || m_nRows == 0) return;
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

// From left to right. Places are computed from the left edge of the picture, not of the clip, so that each pixel has
// the same shade in any clip.
void SmoothCurve::AddSegment(ShapePoint from, ShapePoint to) {
    const double start = NearCoordinate(from.x) * kParts, last = NearCoordinate(to.x) * kParts;
    if (!(last >= m_nOrigin && start < m_nOrigin + m_nParts)) return;
    from.y = NearCoordinate(from.y);
    to.y = NearCoordinate(to.y);
    const auto extend = [this](int part, double a, double b) {
        float &low = m_low[static_cast<std::size_t>(part)], &high = m_high[static_cast<std::size_t>(part)];
        low = std::min(low, static_cast<float>(std::min(a, b)));
        high = std::max(high, static_cast<float>(std::max(a, b)));
    };
    const bool isCutBefore = start < m_nOrigin, isCutAfter = last >= m_nOrigin + m_nParts;
    const int begin = isCutBefore ? 0 : WholeOf(start) - m_nOrigin;
    const int end = isCutAfter ? m_nParts - 1 : WholeOf(last) - m_nOrigin;
    m_nFirst = std::min(m_nFirst, begin);
    m_nLast = std::max(m_nLast, end);
    if (begin == end && !isCutBefore && !isCutAfter) return extend(end, from.y, to.y);
    const double slope = last > start ? (to.y - from.y) / (last - start) : 0;
    const auto yAt = [&](int part) { return from.y + slope * (m_nOrigin + part - start); };
    double before = isCutBefore ? yAt(0) : from.y;
    for (int part = begin; part < end; ++part) {
        const double next = yAt(part + 1);
        extend(part, before, next);
        before = next;
    }
    extend(end, before, isCutAfter ? yAt(m_nParts) : to.y);
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
    const int firstColumn = std::max(0, (left - m_nReach) / kParts);
    const int lastColumn = std::min(m_nColumns - 1, (right - m_nReach) / kParts);
    std::array<Rows, kTile> whole{};
    for (int column = firstColumn; column <= lastColumn; ++column) {
        whole[static_cast<std::size_t>(column % kTile)] = ShadeColumn(column, left, right);
        if (column != lastColumn && column % kTile != kTile - 1) continue;
        FillWhole(column / kTile, whole);
        whole = {};
    }
}

// Shades the pixels of a column apart from rows, which are returned, that all parts cover.
SmoothCurve::Rows SmoothCurve::ShadeColumn(int column, int left, int right) {
    const auto top = static_cast<float>(m_raster.top), height = static_cast<float>(m_nRows);
    int least = m_nRows, most = -1, lastBegin = -1, firstEnd = m_nRows, count = 0;
    for (int i = 0; i < kParts; ++i) {
        const int part = column * kParts + m_nReach + i;
        if (part < left || part > right) continue;
        const float from = std::max(0.0F, m_wideLow[static_cast<std::size_t>(part)] - top);
        const float to = std::min(height, m_wideHigh[static_cast<std::size_t>(part)] - top);
        if (!(from < to)) continue;
        const int begin = static_cast<int>(from), end = std::min(m_nRows - 1, static_cast<int>(to));
        least = std::min(least, begin);
        most = std::max(most, end);
        lastBegin = std::max(lastBegin, begin);
        firstEnd = std::min(firstEnd, end);
        ++count;
        if (begin == end) {
            m_part[static_cast<std::size_t>(begin)] += to - from;
            continue;
        }
        m_part[static_cast<std::size_t>(begin)] += static_cast<float>(begin + 1) - from;
        m_part[static_cast<std::size_t>(end)] += to - static_cast<float>(end);
        m_change[static_cast<std::size_t>(begin) + 1] += 1;
        m_change[static_cast<std::size_t>(end)] -= 1;
    }
    if (most < 0) return {};
    Touch(column / kTile, {least, most + 1});
    float whole = 0;
    std::uint8_t* const shades = ShadesOf(column / kTile) + column % kTile;
    const auto shadeRows = [&](int begin, int end) {
        for (int row = begin; row < end; ++row) {
            const auto at = static_cast<std::size_t>(row);
            whole += m_change[at];
            const float share = std::min(1.0F, (whole + m_part[at]) / kParts);
            std::uint8_t& shade = shades[at * kTile];
            shade = std::max(shade, static_cast<std::uint8_t>(share * 255 + 0.5F));
            m_change[at] = m_part[at] = 0;
        }
    };
    Rows covered{lastBegin + 2, firstEnd};
    if (count < kParts || covered.begin >= covered.end) covered = {most + 1, most + 1};
    shadeRows(least, covered.begin);
    shadeRows(covered.end, most + 1);
    m_change[static_cast<std::size_t>(most) + 1] = 0;
    return covered;
}

// Nearly all pixels of a dense curve are in rows that all columns of a tile cover.
void SmoothCurve::FillWhole(int tile, const std::array<Rows, kTile>& whole) {
    Rows common = whole[0];
    for (const Rows& rows : whole) common = {std::max(common.begin, rows.begin), std::min(common.end, rows.end)};
    common.end = std::max(common.begin, common.end);
    std::uint8_t* const shades = ShadesOf(tile);
    constexpr std::uint8_t kWhole = 255;
    std::fill(shades + common.begin * kTile, shades + common.end * kTile, kWhole);
    for (int i = 0; i < kTile; ++i) {
        const auto [begin, end] = whole[static_cast<std::size_t>(i)];
        for (int row = begin; row < std::min(end, common.begin); ++row) shades[row * kTile + i] = kWhole;
        for (int row = std::max(begin, common.end); row < end; ++row) shades[row * kTile + i] = kWhole;
    }
}

// Rows that no curve has touched before have no shade yet.
void SmoothCurve::Touch(int tile, Rows rows) {
    Rows& touched = m_touched[static_cast<std::size_t>(tile)];
    if (touched.begin == touched.end) touched = {rows.begin, rows.begin};
    const auto clear = [&](int begin, int end) {
        if (begin < end) std::fill(ShadesOf(tile) + begin * kTile, ShadesOf(tile) + end * kTile, std::uint8_t{0});
    };
    clear(rows.begin, touched.begin);
    clear(touched.end, rows.end);
    touched = {std::min(touched.begin, rows.begin), std::max(touched.end, rows.end)};
}

void SmoothCurve::Blend(COLORREF color, double opacity) {
    const std::uint32_t word = kUnusedByte | static_cast<std::uint32_t>(GetRValue(color)) << 16U |
                               static_cast<std::uint32_t>(GetGValue(color)) << 8U | GetBValue(color);
    const ShadeMixer mixer(word, static_cast<std::uint32_t>(opacity * 255 + 0.5));
    for (int tile = 0; tile * kTile < m_nColumns; ++tile) {
        const Rows& rows = m_touched[static_cast<std::size_t>(tile)];
        const int count = std::min(kTile, m_nColumns - tile * kTile);
        for (int row = rows.begin; row < rows.end; ++row)
            mixer.Mix(m_raster.At(m_raster.left + tile * kTile, m_raster.top + row), count,
                      ShadesOf(tile) + row * kTile);
    }
}

}  // namespace qel
