#include "qellib10/graph/chart_curves.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "qellib10/graph/chart_line.h"
#include "qellib10/graph/left_out.h"

namespace qel {
namespace {

constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

}  // namespace

SeriesCurves::SeriesCurves(const Chart& chart, std::size_t series, const std::vector<AxisLayout>& axes)
    : m_chart(chart),
      m_index(series),
      m_series(chart.series[series]),
      m_x(axes[m_series.xAxis].places),
      m_y(axes[m_series.yAxis].places),
      m_leftOut(PointsLeftOut(m_series)) {}

ShapePoint SeriesCurves::At(std::size_t point) const {
    const CGraphData& data = m_series.points[point];
    return {m_x.At(data.GetXData()), m_y.At(data.GetYData())};
}

bool SeriesCurves::Counts(std::size_t point) const { return !std::ranges::binary_search(m_leftOut, point); }

std::vector<ShapePoint> SeriesCurves::LeftOut() const {
    const bool isOnBars = m_series.kind == ChartKind::kBars && !m_leftOut.empty();
    const double beside = isOnBars ? PlacesOfBars(m_chart, m_index, m_x).Middle() : 0;
    std::vector<ShapePoint> places;
    for (const std::size_t point : m_leftOut) {
        const ShapePoint at = At(point);
        if (!IsGap(at)) places.push_back({at.x + beside, at.y});
    }
    return places;
}

double SeriesCurves::Base() const { return m_y.BaseAt(m_series.base); }

// The points between the ends of the axis, and their neighbours; all of them where x does not always grow.
SeriesCurves::Points SeriesCurves::VisiblePoints() const {
    const std::vector<CGraphData>& points = m_series.points;
    for (std::size_t i = 1; i < points.size(); ++i)
        if (!(points[i - 1].GetXData() <= points[i].GetXData())) return {0, points.size()};
    const auto first = std::ranges::lower_bound(points, m_x.low, {}, &CGraphData::GetXData);
    const auto last = std::ranges::upper_bound(points, m_x.high, {}, &CGraphData::GetXData);
    auto begin = static_cast<std::size_t>(first - points.begin());
    auto end = static_cast<std::size_t>(last - points.begin());
    do {
        begin -= std::min<std::size_t>(begin, 1);
    } while (begin > 0 && !Counts(begin));
    do {
        end = std::min(points.size(), end + 1);
    } while (end < points.size() && !Counts(end - 1));
    return {begin, end};
}

template <class Y> std::vector<ShapePoint> SeriesCurves::LineOf(const Y& y, double columnsPerUnit) const {
    LineReducer reducer(columnsPerUnit);
    const Points visible = VisiblePoints();
    const bool isSteps = m_series.kind == ChartKind::kSteps;
    const AxisPlaces across = m_x, up = m_y;
    ShapePoint before = kLineGap;
    ForEachKept(m_leftOut, visible.begin, visible.end, [&](std::size_t first, std::size_t end) {
        for (std::size_t i = first; i < end; ++i) {
            const ShapePoint place{across.At(m_series.points[i].GetXData()), up.At(y(i))};
            if (isSteps && !IsGap(before) && !IsGap(place)) reducer.Add({place.x, before.y});
            reducer.Add(place);
            before = place;
        }
    });
    return reducer.Take();
}

std::vector<ShapePoint> SeriesCurves::LineOf(const std::vector<double>& y) const {
    return LineOf([&](std::size_t point) { return y[point]; }, LineReducer::kFine);
}

std::vector<ShapePoint> SeriesCurves::Line(double columnsPerUnit) const {
    return LineOf([this](std::size_t point) { return m_series.points[point].GetYData(); }, columnsPerUnit);
}

std::vector<std::vector<ShapePoint>> SeriesCurves::Between(const std::vector<double>& upper,
                                                           const std::vector<double>& lower) const {
    const std::vector<ShapePoint> above = LineOf(upper), below = LineOf(lower);
    std::vector<std::vector<ShapePoint>> areas;
    // Both have their gaps at the same points, since only such points were kept.
    const auto pieces = [](const std::vector<ShapePoint>& line) {
        std::vector<std::vector<ShapePoint>> found(1);
        for (const ShapePoint& place : line) {
            if (IsGap(place)) {
                found.emplace_back();
            } else {
                found.back().push_back(place);
            }
        }
        return found;
    };
    std::vector<std::vector<ShapePoint>> upperPieces = pieces(above), lowerPieces = pieces(below);
    for (std::size_t i = 0; i < std::min(upperPieces.size(), lowerPieces.size()); ++i) {
        if (upperPieces[i].empty() || lowerPieces[i].empty()) continue;
        areas.push_back(std::move(upperPieces[i]));
        areas.back().insert(areas.back().end(), lowerPieces[i].rbegin(), lowerPieces[i].rend());
    }
    return areas;
}

std::vector<std::vector<ShapePoint>> SeriesCurves::Areas() const {
    std::vector<double> upper(Count()), lower(Count());
    for (std::size_t i = 0; i < Count(); ++i) {
        upper[i] = m_series.points[i].GetYData();
        const bool isBand = m_series.kind == ChartKind::kBand;
        lower[i] = !isBand                     ? (m_y.isLogarithmic && !(m_series.base > 0) ? m_y.low : m_series.base)
                   : i < m_series.lower.size() ? m_series.lower[i]
                                               : kNoNumber;
        if (IsGap({m_y.At(upper[i]), m_y.At(lower[i])})) upper[i] = lower[i] = kNoNumber;
    }
    return Between(upper, lower);
}

std::vector<std::vector<ShapePoint>> SeriesCurves::ErrorAreas() const {
    std::vector<double> upper(Count()), lower(Count());
    for (std::size_t i = 0; i < Count(); ++i) {
        const double y = m_series.points[i].GetYData();
        upper[i] = y + m_series.yErrors.UpAt(i);
        lower[i] = y - m_series.yErrors.DownAt(i);
        if (m_y.isLogarithmic && !(lower[i] > 0)) lower[i] = m_y.low;
        if (IsGap({m_y.At(upper[i]), m_y.At(lower[i])})) upper[i] = lower[i] = kNoNumber;
    }
    return Between(upper, lower);
}

std::vector<SeriesCurves::ErrorBar> SeriesCurves::ErrorBars() const {
    std::vector<ErrorBar> bars;
    const auto isEmpty = [](const ChartErrors& errors) { return errors.down.empty() && errors.up.empty(); };
    if (isEmpty(m_series.xErrors) && isEmpty(m_series.yErrors)) return bars;
    const bool isOnBars = m_series.kind == ChartKind::kBars;
    const double beside = isOnBars ? PlacesOfBars(m_chart, m_index, m_x).Middle() : 0;
    const std::vector<BarEnds> onBars = isOnBars ? EndsOfBars(m_chart, m_index) : std::vector<BarEnds>();
    for (std::size_t i = 0; i < Count(); ++i) {
        const double x = m_series.points[i].GetXData(), y = isOnBars ? onBars[i].to : m_series.points[i].GetYData();
        const ShapePoint at{At(i).x + beside, m_y.At(y)};
        if (IsGap(at) || !Counts(i)) continue;
        const auto end = [](const AxisPlaces& places, double value) {
            return places.isLogarithmic && !(value > 0) ? places.from : places.At(value);
        };
        const double down = m_series.yErrors.DownAt(i), up = m_series.yErrors.UpAt(i);
        if (!m_series.hasErrorBand && (down > 0 || up > 0))
            bars.push_back({{at.x, end(m_y, y - down)}, {at.x, end(m_y, y + up)}, true});
        const double before = m_series.xErrors.DownAt(i), after = m_series.xErrors.UpAt(i);
        if (before > 0 || after > 0) bars.push_back({{end(m_x, x - before), at.y}, {end(m_x, x + after), at.y}, false});
    }
    return bars;
}

std::vector<ChartBox> SeriesCurves::Bars() const {
    const BarPlaces places = PlacesOfBars(m_chart, m_index, m_x);
    const std::vector<BarEnds> ends = EndsOfBars(m_chart, m_index);
    std::vector<ChartBox> bars;
    for (std::size_t i = 0; i < Count(); ++i) {
        const double x = m_x.At(m_series.points[i].GetXData()), y = m_y.At(ends[i].to);
        const double base = m_y.BaseAt(ends[i].from);
        if (IsGap({x, y}) || !Counts(i)) continue;
        const double left = x + places.first;
        bars.push_back({left, std::min(y, base), left + places.width, std::max(y, base)});
    }
    return bars;
}

}  // namespace qel
