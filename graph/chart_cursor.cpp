#include "qellib10/graph/chart_cursor.h"

#include <algorithm>
#include <cmath>

#include "qellib10/graph/series_points.h"

namespace qel {

std::optional<ChartNavigator::Value> ChartCursor::At(const Chart& chart, const ChartNavigator& navigator) const {
    return m_isShown ? navigator.ValueOf(chart, m_series, m_point) : std::nullopt;
}

void ChartCursor::Set(std::size_t series, std::size_t point) noexcept {
    m_isShown = true;
    m_series = series;
    m_point = point;
}

bool ChartCursor::Appear(const Chart& chart, const ChartNavigator& navigator) {
    for (std::size_t series = 0; series < chart.series.size(); ++series) {
        const ChartSeries& each = chart.series[series];
        const AxisPlaces *const across = navigator.PlacesOf(each.xAxis), *const up = navigator.PlacesOf(each.yAxis);
        if (across == nullptr || up == nullptr) continue;
        const SeriesPoints points(each);
        for (std::size_t i = 0; i < points.Count(); ++i) {
            const ShapePoint at{across->At(points[i].GetXData()), up->At(points[i].GetYData())};
            if (!navigator.IsInPlot(at) || !navigator.ValueOf(chart, series, i)) continue;
            Set(series, i);
            return true;
        }
    }
    return false;
}

bool ChartCursor::Step(const Chart& chart, const ChartNavigator& navigator, bool isForward) {
    const auto from = At(chart, navigator);
    if (!from) return Appear(chart, navigator);
    const ChartSeries& series = chart.series[m_series];
    const SeriesPoints points(series);
    const AxisPlaces &across = *navigator.PlacesOf(series.xAxis), &up = *navigator.PlacesOf(series.yAxis);
    const auto best = [&]() -> std::optional<std::size_t> {
        std::optional<std::size_t> last;
        for (std::size_t i = m_point;;) {
            if (isForward ? i + 1 >= points.Count() : i == 0) return last;
            i = isForward ? i + 1 : i - 1;
            const double x = across.At(points[i].GetXData()), y = up.At(points[i].GetYData());
            if (!std::isfinite(x) || !std::isfinite(y)) continue;
            last = i;
            if (std::fabs(x - from->at.x) >= 1 || std::fabs(y - from->at.y) >= 1) return last;
        }
    }();
    if (!best) return false;
    m_point = *best;
    return true;
}

bool ChartCursor::NextSeries(const Chart& chart, const ChartNavigator& navigator) {
    const auto from = At(chart, navigator);
    if (!from) return Appear(chart, navigator);
    const std::vector<ChartNavigator::Value> values = navigator.ValuesAt(chart, from->at.x);
    if (values.empty()) return false;
    const auto next = std::ranges::find_if(values, [&](const auto& value) { return value.series > m_series; });
    const ChartNavigator::Value& to = next == values.end() ? values.front() : *next;
    const bool isOther = to.series != m_series;
    if (isOther) Set(to.series, to.point);
    return isOther;
}

}  // namespace qel
