#include "qellib10/graph/chart_markers.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "qellib10/graph/series_points.h"

namespace qel {
namespace {

bool CanBeMeasured(const Chart& chart, const ChartNavigator& navigator, std::size_t series) {
    const ChartSeries& each = chart.series[series];
    return SeriesPoints(each).Count() > 0 && navigator.PlacesOf(each.xAxis) != nullptr &&
           navigator.PlacesOf(each.yAxis) != nullptr;
}

// The first one from @p start on, after the last one those before it.
std::optional<std::size_t> SeriesFrom(const Chart& chart, const ChartNavigator& navigator, std::size_t start) {
    const std::size_t count = chart.series.size();
    for (std::size_t i = 0; i < count; ++i)
        if (CanBeMeasured(chart, navigator, (start + i) % count)) return (start + i) % count;
    return {};
}

}  // namespace

void ChartMarkers::Set(const std::optional<ChartRange>& range) {
    m_range.reset();
    if (!range || !std::isfinite(range->from) || !std::isfinite(range->to)) return;
    m_range = range;
    if (m_range->from > m_range->to) std::swap(m_range->from, m_range->to);
}

bool ChartMarkers::Toggle(const Chart& chart, const ChartNavigator& navigator) {
    if (std::exchange(m_range, {})) return true;
    const auto series = SeriesFrom(chart, navigator, 0);
    if (!series) return false;
    const AxisPlaces& places = *navigator.PlacesOf(chart.series[*series].xAxis);
    const ChartBox& plot = navigator.Plot();
    Set(ChartRange{*series, places.ValueAt(plot.left + plot.Width() / 4),
                   places.ValueAt(plot.right - plot.Width() / 4)});
    return m_range.has_value();
}

const AxisPlaces* ChartMarkers::PlacesAcross(const Chart& chart, const ChartNavigator& navigator) const {
    if (!m_range || m_range->series >= chart.series.size()) return nullptr;
    return navigator.PlacesOf(chart.series[m_range->series].xAxis);
}

std::optional<ChartMarkers::Places> ChartMarkers::PlacesIn(const Chart& chart, const ChartNavigator& navigator) const {
    const AxisPlaces* const places = PlacesAcross(chart, navigator);
    if (places == nullptr) return {};
    return Places{places->At(m_range->from), places->At(m_range->to)};
}

bool ChartMarkers::Grab(const Chart& chart, const ChartNavigator& navigator, double x, double reach) {
    const auto places = PlacesIn(chart, navigator);
    if (!places) return false;
    const double first = std::fabs(places->from - x), second = std::fabs(places->to - x);
    if (!(std::min(first, second) <= reach)) return false;
    // Of two markers at one place, the one moves that has space on the pointer's side.
    m_isSecond = first == second ? x >= places->to : second < first;
    return true;
}

bool ChartMarkers::MoveTo(const Chart& chart, const ChartNavigator& navigator, double x) {
    const AxisPlaces* const places = PlacesAcross(chart, navigator);
    if (places == nullptr || std::isnan(x)) return false;
    const double value = places->ValueAt(std::clamp(x, navigator.Plot().left, navigator.Plot().right));
    double& moved = m_isSecond ? m_range->to : m_range->from;
    if (!std::isfinite(value) || value == moved) return false;
    moved = value;
    if (m_range->from > m_range->to) {
        std::swap(m_range->from, m_range->to);
        m_isSecond = !m_isSecond;
    }
    return true;
}

bool ChartMarkers::MoveBy(const Chart& chart, const ChartNavigator& navigator, double dx) {
    const auto places = PlacesIn(chart, navigator);
    if (!places) return false;
    const double from = m_isSecond ? places->to : places->from;
    return MoveTo(chart, navigator, PlacesAcross(chart, navigator)->Stepped(from, dx));
}

bool ChartMarkers::NextSeries(const Chart& chart, const ChartNavigator& navigator) {
    if (!m_range) return false;
    const auto next = SeriesFrom(chart, navigator, m_range->series + 1);
    if (!next || *next == m_range->series) return false;
    // The markers stay where they are drawn, though the series may have another axis.
    const auto places = PlacesIn(chart, navigator);
    m_range->series = *next;
    const AxisPlaces* const across = PlacesAcross(chart, navigator);
    if (places && across != nullptr) Set(ChartRange{*next, across->ValueAt(places->from), across->ValueAt(places->to)});
    return true;
}

}  // namespace qel
