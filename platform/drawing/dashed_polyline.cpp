#include "qellib10/platform/drawing/dashed_polyline.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "qellib10/platform/drawing/dash_pattern.h"

namespace qel {
namespace {

// From this number of points in a column they are drawn together.
constexpr std::size_t kFew = 4;
// At most this many at once.
constexpr std::size_t kMost = 1024;

// Number of lines that are examined together.
constexpr std::size_t kBlock = 8;
// The largest distance between rows, so that the steps of a block fit in 32 bits.
constexpr std::int64_t kMaxRows = 1 << 24;

#if defined(__SSE2__)

// One coordinate of four points.
enum class Axis { kX, kY };
template <Axis kAxis> __m128i FourOf(const POINT* points) noexcept {
    const auto load = [](const POINT* at) {
        return _mm_castsi128_ps(_mm_loadu_si128(reinterpret_cast<const __m128i*>(at)));
    };
    constexpr int kLanes = kAxis == Axis::kX ? _MM_SHUFFLE(2, 0, 2, 0) : _MM_SHUFFLE(3, 1, 3, 1);
    return _mm_castps_si128(_mm_shuffle_ps(load(points), load(points + 2), kLanes));
}

#endif

// The number of points in the column, before the first one outside it.
std::size_t CountInColumn(std::span<const POINT> points, LONG column) noexcept {
    std::size_t count = 0;
#if defined(__SSE2__)
    const __m128i four = _mm_set1_epi32(column);
    while (points.size() - count >= 4 &&
           _mm_movemask_epi8(_mm_cmpeq_epi32(FourOf<Axis::kX>(&points[count]), four)) == 0xFFFF) {
        count += 4;
    }
#endif
    while (count < points.size() && points[count].x == column) ++count;
    return count;
}

// Number of steps of a block of vertical lines, from each point to the next, or -1 if one of them starts outside the
// rows from low to high. The last point is within them.
std::int64_t StepsWithin(const POINT* points, std::int64_t low, std::int64_t high) noexcept {
    if (high - low > kMaxRows) return -1;
#if defined(__SSE2__)
    const __m128i lowest = _mm_set1_epi32(static_cast<LONG>(low)), highest = _mm_set1_epi32(static_cast<LONG>(high));
    __m128i isOutside = _mm_setzero_si128(), sum = _mm_setzero_si128();
    for (std::size_t i = 0; i < kBlock; i += 4) {
        const __m128i from = FourOf<Axis::kY>(points + i);
        const __m128i way = _mm_sub_epi32(FourOf<Axis::kY>(points + i + 1), from);
        const __m128i sign = _mm_srai_epi32(way, 31);
        sum = _mm_add_epi32(sum, _mm_sub_epi32(_mm_xor_si128(way, sign), sign));
        isOutside =
            _mm_or_si128(isOutside, _mm_or_si128(_mm_cmplt_epi32(from, lowest), _mm_cmpgt_epi32(from, highest)));
    }
    if (_mm_movemask_epi8(isOutside) != 0) return -1;
    sum = _mm_add_epi32(sum, _mm_srli_si128(sum, 8));
    return std::int64_t{_mm_cvtsi128_si32(sum)} + _mm_cvtsi128_si32(_mm_srli_si128(sum, 4));
#else
    std::int64_t steps = 0;
    for (std::size_t i = 0; i < kBlock; ++i) {
        if (points[i].y < low || points[i].y > high) return -1;
        steps += std::abs(points[i + 1].y - points[i].y);
    }
    return steps;
#endif
}

}  // namespace

DashedPolyline::Upright::Upright(LONG start, LONG end) noexcept
    : from(start), steps(std::abs(std::int64_t{end} - start)), rows{start, start - std::int64_t{1}} {
    if (steps > 0) rows = end > start ? Rows{start, std::int64_t{end} - 1} : Rows{std::int64_t{end} + 1, start};
}

DashedPolyline::DashedPolyline(const Raster& raster, const Ink& ink, std::uint32_t color, std::uint32_t gap)
    : m_raster(raster), m_color(color), m_gap(gap), m_isOpaque(ink.isOpaque) {
    m_nDashes = 0;
    m_nPeriod = DashPeriod(ink.penStyle);
    for (int step = 0; step < m_nPeriod; ++step) m_nDashes |= std::uint32_t{IsDash(ink.penStyle, step)} << step;
}

void DashedPolyline::LineTo(const POINT& to) {
    const LineSteps steps(m_at, to, {m_raster.left, m_raster.top, m_raster.right, m_raster.bottom});
    int phase = static_cast<int>((m_nPhase + steps.First()) % m_nPeriod);
    steps.ForEach([&](int x, int y, std::int64_t) {
        Put(*m_raster.At(x, y), phase);
        if (++phase == m_nPeriod) phase = 0;
    });
    const auto distance = [](LONG a, LONG b) { return std::abs(std::int64_t{a} - b); };
    m_nPhase = (m_nPhase + std::max(distance(m_at.x, to.x), distance(m_at.y, to.y))) % m_nPeriod;
    m_at = to;
}

void DashedPolyline::LinesTo(std::span<const POINT> points) {
    while (!points.empty()) {
        const std::size_t count = CountInColumn(points, m_at.x);
        if (count >= kFew) {
            DrawColumn(points.first(count));
            points = points.subspan(count);
        } else {
            const std::span<const POINT> some = points.first(count + (count < points.size() ? 1 : 0));
            for (const POINT& to : some) LineTo(to);
            points = points.subspan(some.size());
        }
    }
}

void DashedPolyline::DrawColumn(std::span<const POINT> points) {
    while (!points.empty()) {
        const std::span<const POINT> some = points.first(std::min(points.size(), kMost));
        const std::int64_t steps = m_isOpaque ? DrawBackward(some) : DrawOutsideFull(some);
        m_nPhase = (m_nPhase + steps) % m_nPeriod;
        m_at = some.back();
        points = points.subspan(some.size());
    }
}

// The finished rows are one continuous range, because each line ends where the next one starts; a line has rows outside
// it only if it starts outside.
std::int64_t DashedPolyline::DrawBackward(std::span<const POINT> points) {
    struct Part {
        Rows rows;
        std::int64_t from, steps;  // where its line starts, and the steps from there to the last point
    };
    std::array<Part, kMost> parts;
    std::size_t count = 0;
    LONG low = 1, high = 0;  // the finished rows
    std::int64_t steps = 0;
    LONG to = points.back().y;
    std::size_t next = points.size();  // where the next block may be examined
    for (std::size_t i = points.size(); i-- > 0;) {
        if (i >= kBlock && i <= next && low <= to && to <= high) {
            const std::int64_t within = StepsWithin(&points[i - kBlock], low, high);
            next = i - kBlock;
            if (within >= 0) {
                steps += within;
                i -= kBlock - 1;
                to = points[i - 1].y;
                continue;
            }
        }
        const LONG from = i > 0 ? points[i - 1].y : m_at.y;
        steps += std::abs(std::int64_t{to} - from);
        if (from < low || from > high) {
            const Upright line(from, to);
            const bool isFirst = low > high;
            if (line.steps > 0) {
                parts[count++] = {isFirst      ? line.rows
                                  : from < low ? Rows{from, std::int64_t{low} - 1}
                                               : Rows{std::int64_t{high} + 1, from},
                                  from, steps};
                low = isFirst ? static_cast<LONG>(line.rows.low) : std::min(low, from);
                high = isFirst ? static_cast<LONG>(line.rows.high) : std::max(high, from);
            }
        }
        to = from;
    }
    for (const Part& part : std::span(parts).first(count))
        DrawRows(part.rows, part.from, m_nPhase + steps - part.steps);
    return steps;
}

std::int64_t DashedPolyline::DrawOutsideFull(std::span<const POINT> points) {
    Rows full{1, 0};  // one continuous range, all in the pen's colour
    std::int64_t steps = 0;
    std::size_t next = 1;  // where the next block may be examined
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (i >= next && points.size() - i >= kBlock) {
            next = i + kBlock;
            const std::int64_t last = points[next - 1].y;
            const std::int64_t within =
                last >= full.low && last <= full.high ? StepsWithin(&points[i - 1], full.low, full.high) : -1;
            if (within >= 0) {
                steps += within;
                i = next - 1;
                continue;
            }
        }
        const Upright line(i > 0 ? points[i - 1].y : m_at.y, points[i].y);
        if (line.steps > 0 && (line.rows.low < full.low || line.rows.high > full.high)) {
            DrawOutside(full, line, m_nPhase + steps);
            WidenFull(full, line.from);
        }
        steps += line.steps;
    }
    return steps;
}

// The rows of a line outside that range.
void DashedPolyline::DrawOutside(const Rows& rows, const Upright& line, std::int64_t phase) {
    if (rows.IsEmpty()) return DrawRows(line.rows, line.from, phase);
    DrawRows({line.rows.low, std::min(line.rows.high, rows.low - 1)}, line.from, phase);
    DrawRows({std::max(line.rows.low, rows.high + 1), line.rows.high}, line.from, phase);
}

void DashedPolyline::WidenFull(Rows& full, std::int64_t row) const {
    const bool isInside = m_at.x >= m_raster.left && m_at.x < m_raster.right;
    const auto isFull = [&](std::int64_t y) {
        return isInside && y >= m_raster.top && y < m_raster.bottom &&
               *m_raster.At(m_at.x, static_cast<int>(y)) == m_color;
    };
    if (full.IsEmpty()) {
        if (!isFull(row)) return;
        full = {row, row};
    }
    while (isFull(full.low - 1)) --full.low;
    while (isFull(full.high + 1)) ++full.high;
}

// Rows above or below the row in which the line starts, that row included, where the pattern has the phase.
void DashedPolyline::DrawRows(Rows rows, std::int64_t from, std::int64_t phase) {
    rows = {std::max<std::int64_t>(rows.low, m_raster.top), std::min<std::int64_t>(rows.high, m_raster.bottom - 1)};
    if (rows.IsEmpty() || m_at.x < m_raster.left || m_at.x >= m_raster.right) return;
    const bool isDown = from <= rows.low;
    const std::int64_t first = isDown ? rows.low : rows.high;
    int step = static_cast<int>((phase + std::abs(first - from)) % m_nPeriod);
    std::uint32_t* pixel = m_raster.At(m_at.x, static_cast<int>(first));
    for (std::int64_t count = rows.high - rows.low + 1; count > 0; --count) {
        Put(*pixel, step);
        pixel += isDown ? m_raster.stride : -m_raster.stride;
        if (++step == m_nPeriod) step = 0;
    }
}

}  // namespace qel
