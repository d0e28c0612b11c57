#include "qellib10/graph/chart_scale.h"

#include <algorithm>
#include <limits>
#include <map>
#include <span>

#include "qellib10/graph/left_out.h"

namespace qel {
namespace {

constexpr std::size_t kMostAxes = 8, kMostBreaks = 8;

// What the data of an axis reach.
class Extent {
public:
    explicit Extent(bool isLogarithmic) : m_isLogarithmic(isLogarithmic) {}

    void Add(double value) {
        if (!std::isfinite(value) || (m_isLogarithmic && value <= 0)) return;
        m_low = std::min(m_low, value);
        m_high = std::max(m_high, value);
    }
    bool IsEmpty() const { return m_low > m_high; }
    double Low() const { return m_low; }
    double High() const { return m_high; }

private:
    bool m_isLogarithmic;
    double m_low = std::numeric_limits<double>::infinity();
    double m_high = -std::numeric_limits<double>::infinity();
};

void AddWithErrors(Extent& extent, double value, const ChartErrors& errors, std::size_t index) {
    extent.Add(value);
    extent.Add(value - errors.DownAt(index));
    extent.Add(value + errors.UpAt(index));
}

// The smallest distance of neighbouring bars; 0 for one bar.
double BarDistance(const PointView& points) {
    std::vector<double> places;
    for (std::size_t i = 0; i < points.Count(); ++i)
        if (std::isfinite(points[i].GetXData())) places.push_back(points[i].GetXData());
    std::ranges::sort(places);
    double distance = 0;
    for (std::size_t i = 1; i < places.size(); ++i) {
        const double gap = places[i] - places[i - 1];
        if (gap > 0 && (distance == 0 || gap < distance)) distance = gap;
    }
    return distance;
}

bool IsEmpty(const ChartErrors& errors) { return errors.down.empty() && errors.up.empty(); }

// On a logarithmic axis bars start at its low end: a decade below the lowest one, which is seen then.
void AddBase(Extent& extent, const ChartSeries& series, const PointView& points, bool isLogarithmic) {
    constexpr double kBelowLowest = 10;
    const bool isArea = series.kind == ChartKind::kArea, isBars = series.kind == ChartKind::kBars;
    if (isBars || isArea || series.hasDrops) extent.Add(series.base);
    if (!isLogarithmic || series.base > 0 || !(isBars || series.hasDrops)) return;
    for (std::size_t i = 0; i < points.Count(); ++i) extent.Add(points[i].GetYData() / kBelowLowest);
}

void AddSeries(Extent& extent, const ChartSnapshot& data, std::size_t index, bool isX, bool isLogarithmic) {
    const ChartSeries& series = data.chart.series[index];
    const PointView& points = data.points[index];
    if (!isX) AddBase(extent, series, points, isLogarithmic);
    const double half = isX && series.kind == ChartKind::kBars ? BarDistance(points) / 2 : 0;
    const ChartErrors& errors = isX ? series.xErrors : series.yErrors;
    const std::vector<BarEnds> bars =
        !isX && series.kind == ChartKind::kBars && series.isStacked ? EndsOfBars(data, index) : std::vector<BarEnds>();
    if (IsEmpty(errors) && half == 0 && bars.empty() && series.lower.empty()) {
        const ValueRange& all = isX ? points.Totals().x : points.Totals().y;
        for (const double end : {all.low, all.high, all.lowestAboveZero}) extent.Add(end);
        return;
    }
    for (std::size_t i = 0; i < points.Count(); ++i) {
        const CGraphData& point = points[i];
        if (isX) {
            AddWithErrors(extent, point.GetXData(), series.xErrors, i);
            extent.Add(point.GetXData() - half);
            extent.Add(point.GetXData() + half);
            continue;
        }
        AddWithErrors(extent, bars.empty() ? point.GetYData() : bars[i].to, series.yErrors, i);
        if (series.kind == ChartKind::kBand && i < series.lower.size()) extent.Add(series.lower[i]);
    }
}

// Marks and the ends of error bars would be cut at an axis, or lie on it.
bool NeedsSpace(const ChartSeries& series) {
    return series.kind == ChartKind::kPoints || series.kind == ChartKind::kBars ||
           (series.mark != ChartMark::kAuto && series.mark != ChartMark::kNone) || !IsEmpty(series.xErrors) ||
           (!IsEmpty(series.yErrors) && !series.hasErrorBand);
}

bool IsEnd(const std::optional<double>& end, bool isLogarithmic) {
    return end && std::isfinite(*end) && (!isLogarithmic || *end > 0);
}

// Fixed ends, where they are sound.
AxisRange WithFixedEnds(const ChartAxis& axis, AxisRange range) {
    const bool isLogarithmic = axis.scale == ChartScale::kLogarithmic;
    const AxisRange fixed{IsEnd(axis.low, isLogarithmic) ? *axis.low : range.low,
                          IsEnd(axis.high, isLogarithmic) ? *axis.high : range.high};
    if (fixed.low < fixed.high) return fixed;
    // One end alone decides where the data are on its other side.
    if (IsEnd(axis.low, isLogarithmic) != IsEnd(axis.high, isLogarithmic)) {
        const double end = IsEnd(axis.low, isLogarithmic) ? *axis.low : *axis.high;
        const AxisRange around = PaddedRange(end, end, axis.scale);
        return IsEnd(axis.low, isLogarithmic) ? AxisRange{end, around.high} : AxisRange{around.low, end};
    }
    return range;
}

// The axis whose range this one has: at the end of all links, or the first one in a ring of them.
std::size_t SourceOf(const Chart& chart, std::size_t axis) {
    std::size_t source = axis;
    std::vector<std::size_t> passed;
    for (;;) {
        const auto& same = chart.axes[source].sameAs;
        const bool isUsable = same && *same < AxisCount(chart) && chart.axes[*same].scale == chart.axes[source].scale;
        if (!isUsable) return source;
        if (const auto ring = std::ranges::find(passed, source); ring != passed.end())
            return *std::min_element(ring, passed.end());
        passed.push_back(source);
        source = *same;
    }
}

// Those that it can have.
std::span<const ChartBreak> BreaksOf(const ChartAxis& axis) {
    if (!CanBreak(axis.scale)) return {};
    return std::span(axis.breaks).first(std::min(axis.breaks.size(), kMostBreaks));
}

// Of an axis and all those that follow it.
AxisRange RangeOf(const ChartSnapshot& data, std::size_t index) {
    const Chart& chart = data.chart;
    const ChartAxis& axis = chart.axes[index];
    const auto isOf = [&](std::size_t other) { return other < AxisCount(chart) && SourceOf(chart, other) == index; };
    const bool isLogarithmic = axis.scale == ChartScale::kLogarithmic;
    Extent extent(isLogarithmic);
    bool hasSpace = !IsHorizontal(axis);  // lines start at a vertical axis
    for (const ChartLimit& limit : chart.limits) {
        if (!isOf(limit.axis)) continue;
        extent.Add(limit.from);
        if (limit.to) extent.Add(*limit.to);
    }
    for (std::size_t i = 0; i < chart.series.size(); ++i) {
        const ChartSeries& series = chart.series[i];
        if (!HasItsAxes(chart, series)) continue;
        for (const bool isX : {true, false}) {
            if (!isOf(isX ? series.xAxis : series.yAxis)) continue;
            AddSeries(extent, data, i, isX, isLogarithmic);
            hasSpace = hasSpace || NeedsSpace(series);
        }
    }
    if (axis.scale == ChartScale::kCategories) {
        const double count = std::max<double>(1, static_cast<double>(axis.categories.size()));
        return WithFixedEnds(axis, {-0.5, count - 0.5});
    }
    const double defaultLow = isLogarithmic ? 1 : 0, defaultHigh = isLogarithmic ? 10 : 1;
    const double low = extent.IsEmpty() ? defaultLow : extent.Low();
    const double high = extent.IsEmpty() ? defaultHigh : extent.High();
    // The space at both ends is a share of what is shown.
    const double leftOut = LeftOutBetween(BreaksOf(axis), low, high);
    AxisRange range = PaddedRange(low, high - leftOut, axis.scale);
    if (leftOut > 0) range.high = std::min(range.high + leftOut, std::numeric_limits<double>::max());
    if (!hasSpace && !isLogarithmic && low < high) range = {low, high};
    // Where no value is below 0 the axis starts there, not below it.
    if (axis.scale == ChartScale::kLinear && low >= 0 && range.low < 0 && low < high) range.low = 0;
    const double start = high - axis.following;
    if (axis.following > 0 && !axis.high && !extent.IsEmpty() && start < high && (!isLogarithmic || start > 0))
        return {start, high};
    return WithFixedEnds(axis, range);
}

bool IsRange(const AxisRange& range, ChartScale scale) {
    const bool isAboveZero = scale != ChartScale::kLogarithmic || range.low > 0;
    return std::isfinite(range.low) && std::isfinite(range.high) && range.low < range.high && isAboveZero;
}

}  // namespace

std::size_t AxisCount(const Chart& chart) { return std::min(chart.axes.size(), kMostAxes); }

bool HasItsAxes(const Chart& chart, std::size_t xAxis, std::size_t yAxis) {
    const std::size_t count = AxisCount(chart);
    return xAxis < count && yAxis < count && IsHorizontal(chart.axes[xAxis]) && !IsHorizontal(chart.axes[yAxis]);
}

std::vector<AxisParts> PartsOfAxes(const ChartSnapshot& data, const ChartRanges& shown) {
    const Chart& chart = data.chart;
    std::vector<AxisRange> ranges;
    for (std::size_t i = 0; i < AxisCount(chart); ++i) {
        const bool isShown = i < shown.size() && shown[i] && IsRange(*shown[i], chart.axes[i].scale);
        ranges.push_back(isShown ? *shown[i] : RangeOf(data, i));
    }
    std::vector<AxisParts> parts;
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        ranges[i] = ranges[SourceOf(chart, i)];
        parts.push_back(PartsOf(BreaksOf(chart, i), ranges[i]));
    }
    return parts;
}

std::span<const ChartBreak> BreaksOf(const Chart& chart, std::size_t axis) {
    return BreaksOf(chart.axes[SourceOf(chart, axis)]);
}

std::vector<ChartBreak> BreaksWithoutEffect(const Chart& chart, std::size_t axis, const AxisParts& parts) {
    std::vector<ChartBreak> without;
    const std::vector<ChartBreak>& breaks = chart.axes[axis].breaks;
    const bool isItsOwn = SourceOf(chart, axis) == axis;
    for (std::size_t i = 0; i < breaks.size(); ++i) {
        const double low = std::min(breaks[i].from, breaks[i].to), high = std::max(breaks[i].from, breaks[i].to);
        const bool isRead = isItsOwn && CanBreak(chart.axes[axis].scale) && i < kMostBreaks && low < high;
        const bool isInPart = std::ranges::any_of(
            parts, [&](const AxisRange& part) { return std::max(part.low, low) < std::min(part.high, high); });
        if (!isRead || isInPart) without.push_back(breaks[i]);
    }
    return without;
}

std::size_t ValuesNotAboveZero(const ChartSnapshot& data) {
    const Chart& chart = data.chart;
    std::size_t count = 0;
    for (std::size_t index = 0; index < chart.series.size(); ++index) {
        const ChartSeries& series = chart.series[index];
        const PointView& points = data.points[index];
        if (!HasItsAxes(chart, series)) continue;
        const auto isLogarithmic = [&](std::size_t axis) { return chart.axes[axis].scale == ChartScale::kLogarithmic; };
        const bool isLogX = isLogarithmic(series.xAxis), isLogY = isLogarithmic(series.yAxis);
        const std::vector<std::size_t> leftOut = PointsLeftOut(series);
        const auto countIn = [&](std::size_t start, std::size_t stop) {
            ForEachKept(leftOut, start, stop, [&](std::size_t first, std::size_t end) {
                for (std::size_t i = first; i < end; ++i) {
                    count += isLogX && points[i].GetXData() <= 0 ? 1 : 0;
                    count += isLogY && points[i].GetYData() <= 0 ? 1 : 0;
                }
            });
        };
        if ((isLogX || isLogY) && !points.Totals().isRising) countIn(0, points.Count());
        if (!points.Totals().isRising) continue;
        // Of values that are all above 0 the summary is enough.
        const std::size_t positive = isLogX ? points.FirstAbove(0) : 0;
        if (isLogX) countIn(0, positive);
        for (std::size_t i = positive; isLogY && i < points.Count();) {
            const std::size_t block = points.PositiveFrom(i);
            if (block == 0) countIn(i, i + 1);
            i += std::max<std::size_t>(block, 1);
        }
    }
    return count;
}

std::vector<BarEnds> EndsOfBars(const ChartSnapshot& data, std::size_t index) {
    const Chart& chart = data.chart;
    struct Sums {
        double above = 0, below = 0;
    };
    const ChartSeries& series = chart.series[index];
    std::map<double, Sums> sums;  // by x
    for (std::size_t i = 0; i < index && series.isStacked; ++i) {
        const ChartSeries& before = chart.series[i];
        const bool isInStack = before.kind == ChartKind::kBars && before.isStacked && before.xAxis == series.xAxis &&
                               before.yAxis == series.yAxis;
        if (!isInStack) continue;
        const PointView& points = data.points[i];
        ForEachKept(PointsLeftOut(before), 0, points.Count(), [&](std::size_t first, std::size_t end) {
            for (std::size_t j = first; j < end; ++j) {
                const double x = points[j].GetXData(), y = points[j].GetYData();
                if (std::isfinite(x) && std::isfinite(y)) (y < 0 ? sums[x].below : sums[x].above) += y;
            }
        });
    }
    std::vector<BarEnds> bars;
    const PointView& points = data.points[index];
    bars.reserve(points.Count());
    for (std::size_t i = 0; i < points.Count(); ++i) {
        const double x = points[i].GetXData(), y = points[i].GetYData();
        const auto found = std::isnan(x) ? sums.end() : sums.find(x);
        const Sums own = found == sums.end() ? Sums() : found->second;
        // The first bar starts at the base. The ends are sums of the values, whatever the base is.
        if (y < 0) {
            bars.push_back({std::min(own.below, series.base), own.below + y});
        } else {
            bars.push_back({std::max(own.above, series.base), own.above + y});
        }
        if (!series.isStacked) bars.back().from = series.base;
    }
    return bars;
}

}  // namespace qel
