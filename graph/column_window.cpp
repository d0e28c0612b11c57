#include "qellib10/graph/column_window.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace qel {
namespace {

using Limits = std::numeric_limits<double>;

// More than the relative error that rounding can cause.
constexpr double kRounding = 16 * Limits::epsilon();
// y values beyond this are computed one by one, because sums and products with them may overflow.
constexpr double kLargest = 1e300;

}  // namespace

ColumnWindow::ColumnWindow(const DataScale& scale, int column) noexcept
    : m_scale(scale),
      m_nX(scale.edge.x + column),
      m_low(Limits::infinity(), Limits::infinity()),
      m_high(-Limits::infinity(), -Limits::infinity()) {
    constexpr auto kX = DataScale::kX, kY = DataScale::kY;
    const double origin = scale.origin[kX], length = scale.length[kX];
    // Distances are cut toward zero. The outermost columns include everything past them.
    const double from = column > 0 ? column : column - 1.0, to = column < 0 ? column : column + 1.0;
    const auto value = [&](double distance) {
        if (distance > kFarthest) return std::copysign(Limits::max(), length);
        if (distance < -kFarthest) return -std::copysign(Limits::max(), length);
        return origin + distance * scale.divisor[kX] / length;
    };
    double low = value(from), high = value(to);
    if (low > high) std::swap(low, high);
    const double margin = (std::fabs(low) + std::fabs(high) + std::fabs(origin)) * kRounding;
    if (margin < Limits::infinity()) {
        low += margin;
        high -= margin;
    }
    const auto isInColumn = [&](double v) {
        return Pixels(scale.Distance(kX, v)) == column && !std::isnan(scale.Distance(kX, v));
    };
    const auto isPlaced = [&](double v) { return !std::isnan(scale.Distance(kY, v)); };
    if (low <= high && isInColumn(low) && isInColumn(high) && isPlaced(-kLargest) && isPlaced(kLargest)) {
        m_low.SetData(low, -kLargest);
        m_high.SetData(high, kLargest);
    }
}

const CGraphData* ColumnWindow::Pass(std::span<const CGraphData> data, double& low, double& high) const noexcept {
    const CGraphData* const end = data.data() + data.size();
    const CGraphData* at = PassBlocks(data.data(), end, low, high);
    for (; at != end && Contains(*at); ++at) {
        low = std::min(low, at->GetYData());
        high = std::max(high, at->GetYData());
    }
    return at;
}

std::size_t ColumnWindow::Map(std::span<const CGraphData> data, POINT* points) const noexcept {
    std::size_t count = MapBlocks(data, points);
    for (; count < data.size() && Contains(data[count]); ++count) {
        points[count] = {m_nX, m_scale.MapY(data[count].GetYData())};
    }
    return count;
}

#if defined(__SSE2__)

// Eight points at a time, x and y side by side.
const CGraphData* ColumnWindow::PassBlocks(const CGraphData* at, const CGraphData* end, double& low,
                                           double& high) const noexcept {
    constexpr std::ptrdiff_t kBlock = 8;
    const auto load = [](const CGraphData& point) { return _mm_set_pd(point.GetYData(), point.GetXData()); };
    const __m128d lowest = load(m_low), highest = load(m_high);
    __m128d runLow = _mm_set1_pd(low), runHigh = _mm_set1_pd(high);
    for (; end - at >= kBlock; at += kBlock) {
        const __m128d a = load(at[0]), b = load(at[1]), c = load(at[2]), d = load(at[3]);
        const __m128d e = load(at[4]), f = load(at[5]), g = load(at[6]), h = load(at[7]);
        const __m128d blockLow =
            _mm_min_pd(_mm_min_pd(_mm_min_pd(a, b), _mm_min_pd(c, d)), _mm_min_pd(_mm_min_pd(e, f), _mm_min_pd(g, h)));
        const __m128d blockHigh =
            _mm_max_pd(_mm_max_pd(_mm_max_pd(a, b), _mm_max_pd(c, d)), _mm_max_pd(_mm_max_pd(e, f), _mm_max_pd(g, h)));
        // Minimum and maximum ignore NaN, so these are searched for.
        const __m128d isNan = _mm_or_pd(_mm_or_pd(_mm_cmpunord_pd(a, b), _mm_cmpunord_pd(c, d)),
                                        _mm_or_pd(_mm_cmpunord_pd(e, f), _mm_cmpunord_pd(g, h)));
        const __m128d isOutside = _mm_or_pd(_mm_cmplt_pd(blockLow, lowest), _mm_cmpgt_pd(blockHigh, highest));
        if (_mm_movemask_pd(_mm_or_pd(isNan, isOutside)) != 0) break;
        runLow = _mm_min_pd(runLow, blockLow);
        runHigh = _mm_max_pd(runHigh, blockHigh);
    }
    low = std::min(low, _mm_cvtsd_f64(_mm_unpackhi_pd(runLow, runLow)));
    high = std::max(high, _mm_cvtsd_f64(_mm_unpackhi_pd(runHigh, runHigh)));
    return at;
}

// Four points at a time, two y values in one division.
std::size_t ColumnWindow::MapBlocks(std::span<const CGraphData> data, POINT* points) const noexcept {
    constexpr std::size_t kBlock = 4;
    const auto load = [](const CGraphData& point) { return _mm_set_pd(point.GetYData(), point.GetXData()); };
    const __m128d lowest = load(m_low), highest = load(m_high);
    const auto isInside = [&](__m128d point) {
        return _mm_and_pd(_mm_cmpge_pd(point, lowest), _mm_cmple_pd(point, highest));
    };
    constexpr auto kY = DataScale::kY;
    const __m128d origin = _mm_set1_pd(m_scale.origin[kY]), length = _mm_set1_pd(m_scale.length[kY]);
    const __m128d divisor = _mm_set1_pd(m_scale.divisor[kY]);
    const __m128i column = _mm_set1_epi32(m_nX), edge = _mm_set1_epi32(m_scale.edge.y);
    const auto place = [&](__m128d first, __m128d second, POINT* to) {
        const __m128d value = _mm_unpackhi_pd(first, second);
        const __m128d distance = _mm_div_pd(_mm_mul_pd(_mm_sub_pd(value, origin), length), divisor);
        const __m128d kept = _mm_min_pd(_mm_max_pd(distance, _mm_set1_pd(-kFarthest)), _mm_set1_pd(kFarthest));
        const __m128i y = _mm_add_epi32(_mm_cvttpd_epi32(kept), edge);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_unpacklo_epi32(column, y));
    };
    std::size_t count = 0;
    for (; data.size() - count >= kBlock; count += kBlock) {
        const CGraphData* const at = &data[count];
        const __m128d a = load(at[0]), b = load(at[1]), c = load(at[2]), d = load(at[3]);
        const __m128d isAll = _mm_and_pd(_mm_and_pd(isInside(a), isInside(b)), _mm_and_pd(isInside(c), isInside(d)));
        if (_mm_movemask_pd(isAll) != 3) break;
        place(a, b, points + count);
        place(c, d, points + count + 2);
    }
    return count;
}

#else

std::size_t ColumnWindow::MapBlocks(std::span<const CGraphData>, POINT*) const noexcept { return 0; }

const CGraphData* ColumnWindow::PassBlocks(const CGraphData* at, const CGraphData*, double&, double&) const noexcept {
    return at;
}

#endif

}  // namespace qel
