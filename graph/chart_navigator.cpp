#include "qellib10/graph/chart_navigator.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "qellib10/graph/chart_scale.h"
#include "qellib10/graph/chart_value_text.h"
#include "qellib10/graph/left_out.h"
#include "qellib10/graph/point_search.h"
#include "qellib10/graph/series_points.h"

namespace qel {
namespace {

constexpr double kLeastBox = 4;    // device units
constexpr double kFinest = 1e-12;  // of the values: the smallest range that is shown
constexpr double kMostFactor = 1e6;

ChartBox Normalised(const ChartBox& box) {
    return {std::min(box.left, box.right), std::min(box.top, box.bottom), std::max(box.left, box.right),
            std::max(box.top, box.bottom)};
}

}  // namespace

void ChartNavigator::Take(const Chart& chart, const ChartReport& report) {
    m_plot = report.plot;
    m_axes.clear();
    for (std::size_t i = 0; i < std::min(report.axes.size(), chart.axes.size()); ++i) {
        const std::span<const ChartBreak> breaks = BreaksOf(chart, i);
        m_axes.push_back({report.axes[i], IsHorizontal(chart.axes[i]), {breaks.begin(), breaks.end()}});
    }
}

// Shows the values between two places of the axis.
bool ChartNavigator::Show(std::size_t axis, double from, double to) {
    const AxisPlaces& places = m_axes[axis].places;
    AxisRange range{places.ValueAt(from), places.ValueAt(to)};
    if (range.low > range.high) std::swap(range.low, range.high);
    const double size = std::max(std::fabs(range.low), std::fabs(range.high));
    const bool isRange = std::isfinite(range.low) && std::isfinite(range.high) &&
                         range.high - range.low > size * kFinest && (!places.isLogarithmic || range.low > 0);
    if (!isRange) return false;
    if (m_shown.size() < m_axes.size()) m_shown.resize(m_axes.size());
    m_shown[axis] = range;
    // Further steps before the next drawing go on from here: the ends stay where they are drawn.
    m_axes[axis].places =
        qel::PlacesOf(PartsOf(m_axes[axis].breaks, range), places.isLogarithmic, places.from, places.to, places.gap);
    return true;
}

bool ChartNavigator::ZoomAt(const ShapePoint& at, double factor, ChartDirection direction) {
    if (!(factor >= 1 / kMostFactor && factor <= kMostFactor) || !IsInPlot(at)) return false;
    bool isChanged = false;
    for (std::size_t i = 0; i < m_axes.size(); ++i) {
        const auto& [places, isHorizontal, breaks] = m_axes[i];
        if (direction == (isHorizontal ? ChartDirection::kY : ChartDirection::kX)) continue;
        const double fixed = isHorizontal ? at.x : at.y;
        isChanged = Show(i, fixed + (places.from - fixed) / factor, fixed + (places.to - fixed) / factor) || isChanged;
    }
    return isChanged;
}

bool ChartNavigator::ZoomTo(ChartBox box) {
    box = Normalised(box);
    box = {std::max(box.left, m_plot.left), std::max(box.top, m_plot.top), std::min(box.right, m_plot.right),
           std::min(box.bottom, m_plot.bottom)};
    const bool isWide = box.Width() >= kLeastBox, isHigh = box.Height() >= kLeastBox;
    bool isChanged = false;
    for (std::size_t i = 0; i < m_axes.size(); ++i) {
        const bool isHorizontal = m_axes[i].isHorizontal;
        if (!(isHorizontal ? isWide : isHigh)) continue;
        isChanged = Show(i, isHorizontal ? box.left : box.top, isHorizontal ? box.right : box.bottom) || isChanged;
    }
    return isChanged;
}

bool ChartNavigator::PanBy(double dx, double dy) {
    bool isChanged = false;
    for (std::size_t i = 0; i < m_axes.size(); ++i) {
        const double by = m_axes[i].isHorizontal ? dx : dy;
        const AxisPlaces& places = m_axes[i].places;
        if (by != 0) isChanged = Show(i, places.from - by, places.to - by) || isChanged;
    }
    return isChanged;
}

bool ChartNavigator::IsInPlot(const ShapePoint& at) const noexcept {
    return at.x >= m_plot.left && at.x <= m_plot.right && at.y >= m_plot.top && at.y <= m_plot.bottom;
}

bool ChartNavigator::IsPlaced(const Chart& chart, const ChartSeries& series) const {
    return HasItsAxes(chart, series) && series.xAxis < m_axes.size() && series.yAxis < m_axes.size();
}

std::optional<ChartNavigator::Value> ChartNavigator::ValueOf(const Chart& chart, std::size_t series,
                                                             std::size_t point) const {
    if (series >= chart.series.size() || !IsPlaced(chart, chart.series[series])) return {};
    const ChartSeries& from = chart.series[series];
    const SeriesPoints points(from);
    if (point >= points.Count()) return {};
    const AxisPlaces &across = m_axes[from.xAxis].places, &up = m_axes[from.yAxis].places;
    const double x = points[point].GetXData(), y = points[point].GetYData();
    const ShapePoint at{across.At(x), up.At(y)};
    if (!std::isfinite(at.x) || !std::isfinite(at.y)) return {};
    std::string text = from.name.empty() ? "" : from.name + ": ";
    text += ValueText(chart.axes[from.xAxis], across, x) + ", " + ValueText(chart.axes[from.yAxis], up, y);
    if (const auto reason = ReasonLeftOut(from, point))
        text += " (" + chart.leftOutText + (reason->empty() ? "" : ": ") + *reason + ")";
    return Value{series, point, at, text};
}

std::vector<ChartNavigator::Value> ChartNavigator::ValuesAt(const Chart& chart, double x) const {
    std::vector<Value> values;
    for (std::size_t i = 0; i < chart.series.size(); ++i) {
        const ChartSeries& series = chart.series[i];
        if (!IsPlaced(chart, series) || series.kind == ChartKind::kBand) continue;
        const SeriesPoints points(series);
        const PointSearch search{points, m_axes[series.xAxis].places, m_axes[series.yAxis].places};
        if (auto value = ValueOf(chart, i, search.Nearest(x).value_or(points.Count())))
            values.push_back(std::move(*value));
    }
    return values;
}

std::optional<ChartNavigator::Value> ChartNavigator::PointNear(const Chart& chart, const ShapePoint& at,
                                                               double reach) const {
    std::size_t bestSeries = 0, best = 0;
    double least = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < chart.series.size(); ++i) {
        const ChartSeries& series = chart.series[i];
        if (!IsPlaced(chart, series) || series.kind == ChartKind::kBand) continue;
        const SeriesPoints points(series);
        const AxisPlaces across = m_axes[series.xAxis].places, up = m_axes[series.yAxis].places;
        const PointSearch search{points, across, up};
        const auto [begin, end] = search.Across(at.x - reach, at.x + reach);
        for (std::size_t point = begin; point < end; ++point) {
            const double dx = across.At(points[point].GetXData()) - at.x;
            if (!(std::fabs(dx) <= reach)) continue;
            const double distance = std::hypot(dx, up.At(points[point].GetYData()) - at.y);
            if (!(distance <= reach && distance < least)) continue;
            bestSeries = i, best = point;
            least = distance;
        }
    }
    return std::isinf(least) ? std::nullopt : ValueOf(chart, bestSeries, best);
}

std::vector<std::size_t> ChartNavigator::PointsIn(const Chart& chart, std::size_t series, ChartBox box) const {
    if (series >= chart.series.size() || !IsPlaced(chart, chart.series[series])) return {};
    const ChartSeries& from = chart.series[series];
    const SeriesPoints points(from);
    return PointSearch{points, m_axes[from.xAxis].places, m_axes[from.yAxis].places}.In(Normalised(box));
}

}  // namespace qel
