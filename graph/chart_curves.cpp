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

SeriesCurves::SeriesCurves(const ChartSnapshot& data, std::size_t series, const AxisPart& x, const AxisPart& y)
    : m_data(data),
      m_index(series),
      m_series(data.chart.series[series]),
      m_points(data.points[series]),
      m_x(x),
      m_y(y),
      m_leftOut(PointsLeftOut(m_series)) {
    // A store may have more points by now.
    std::erase_if(m_leftOut, [this](std::size_t point) { return point >= Count(); });
}

ShapePoint SeriesCurves::At(std::size_t point) const {
    const CGraphData& data = m_points[point];
    return {m_x.At(data.GetXData()), m_y.At(data.GetYData())};
}

bool SeriesCurves::Counts(std::size_t point) const { return !std::ranges::binary_search(m_leftOut, point); }

std::vector<ShapePoint> SeriesCurves::LeftOut() const {
    const bool isOnBars = m_series.kind == ChartKind::kBars && !m_leftOut.empty();
    const double beside = isOnBars ? PlacesOfBars(m_data, m_index, m_x).Middle() : 0;
    std::vector<ShapePoint> places;
    for (const std::size_t point : m_leftOut) {
        const ShapePoint at = At(point);
        if (!IsGap(at)) places.push_back({at.x + beside, at.y});
    }
    return places;
}

double SeriesCurves::Base() const { return m_y.BaseAt(m_series.base); }

// The points between the ends of the axis, and their neighbours; all of them where x does not always grow.
SeriesCurves::Points SeriesCurves::VisiblePoints(double beside) const {
    if (!m_points.Totals().isRising) return {0, Count()};
    const double more = m_x.to > m_x.from ? beside : -beside;
    std::size_t begin = m_points.FirstFrom(std::min(m_x.low, m_x.ValueAt(m_x.from - more)));
    std::size_t end = m_points.FirstAbove(std::max(m_x.high, m_x.ValueAt(m_x.to + more)));
    do {
        begin -= std::min<std::size_t>(begin, 1);
    } while (begin > 0 && !Counts(begin));
    do {
        end = std::min(Count(), end + 1);
    } while (end < Count() && !Counts(end - 1));
    return {begin, end};
}

std::vector<ShapePoint> SeriesCurves::LineOf(std::span<const double> heights, double columnsPerUnit,
                                             double beside) const {
    const Points visible = VisiblePoints(beside);
    const bool isSteps = m_series.kind == ChartKind::kSteps;
    const PointLine line{m_points, m_x, m_y, columnsPerUnit, isSteps, heights, m_leftOut};
    return line.Reduced(visible.begin, visible.end);
}

std::vector<ShapePoint> SeriesCurves::Line(double beside) const { return LineOf({}, PointLine::kFine, beside); }
std::vector<ShapePoint> SeriesCurves::RoughLine(double columnsPerUnit) const { return LineOf({}, columnsPerUnit, 0); }

std::vector<std::vector<ShapePoint>> SeriesCurves::Between(const std::vector<double>& upper,
                                                           const std::vector<double>& lower,
                                                           double columnsPerUnit) const {
    const std::vector<ShapePoint> above = LineOf(upper, columnsPerUnit, 0), below = LineOf(lower, columnsPerUnit, 0);
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

std::vector<std::vector<ShapePoint>> SeriesCurves::Areas(double columnsPerUnit) const {
    std::vector<double> upper(Count()), lower(Count());
    for (std::size_t i = 0; i < Count(); ++i) {
        upper[i] = m_points[i].GetYData();
        const bool isBand = m_series.kind == ChartKind::kBand;
        lower[i] = !isBand                     ? (m_y.isLogarithmic && !(m_series.base > 0) ? m_y.low : m_series.base)
                   : i < m_series.lower.size() ? m_series.lower[i]
                                               : kNoNumber;
        if (IsGap({m_y.At(upper[i]), m_y.At(lower[i])})) upper[i] = lower[i] = kNoNumber;
    }
    return Between(upper, lower, columnsPerUnit);
}

std::vector<std::vector<ShapePoint>> SeriesCurves::ErrorAreas(double columnsPerUnit) const {
    std::vector<double> upper(Count()), lower(Count());
    for (std::size_t i = 0; i < Count(); ++i) {
        const double y = m_points[i].GetYData();
        upper[i] = y + m_series.yErrors.UpAt(i);
        lower[i] = y - m_series.yErrors.DownAt(i);
        if (m_y.isLogarithmic && !(lower[i] > 0)) lower[i] = m_y.low;
        if (IsGap({m_y.At(upper[i]), m_y.At(lower[i])})) upper[i] = lower[i] = kNoNumber;
    }
    return Between(upper, lower, columnsPerUnit);
}

std::vector<SeriesCurves::ErrorBar> SeriesCurves::ErrorBars() const {
    std::vector<ErrorBar> bars;
    const auto isEmpty = [](const ChartErrors& errors) { return errors.down.empty() && errors.up.empty(); };
    if (isEmpty(m_series.xErrors) && isEmpty(m_series.yErrors)) return bars;
    const bool isOnBars = m_series.kind == ChartKind::kBars;
    const double beside = isOnBars ? PlacesOfBars(m_data, m_index, m_x).Middle() : 0;
    const std::vector<BarEnds> onBars = isOnBars ? EndsOfBars(m_data, m_index) : std::vector<BarEnds>();
    for (std::size_t i = 0; i < Count(); ++i) {
        const double x = m_points[i].GetXData(), y = isOnBars ? onBars[i].to : m_points[i].GetYData();
        const ShapePoint at{At(i).x + beside, m_y.At(y)};
        if (IsGap(at) || !Counts(i)) continue;
        const auto end = [](const AxisPart& places, double value) {
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
    const BarPlaces places = PlacesOfBars(m_data, m_index, m_x);
    const std::vector<BarEnds> ends = EndsOfBars(m_data, m_index);
    std::vector<ChartBox> bars;
    for (std::size_t i = 0; i < Count(); ++i) {
        const double x = m_x.At(m_points[i].GetXData()), y = m_y.At(ends[i].to);
        const double base = m_y.BaseAt(ends[i].from);
        if (IsGap({x, y}) || !Counts(i)) continue;
        const double left = x + places.first;
        bars.push_back({left, std::min(y, base), left + places.width, std::max(y, base)});
    }
    return bars;
}

}  // namespace qel
