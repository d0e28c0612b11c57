#include "qellib10/graph/chart_range.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include "qellib10/graph/chart_value_text.h"
#include "qellib10/graph/left_out.h"
#include "qellib10/graph/series_points.h"
#include "qellib10/platform/text/string_table.h"

namespace qel {
namespace {

constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

// Sums whose rounding errors do not grow with the number of points (Neumaier 1974).
class Sum {
public:
    void Add(double value) {
        const double sum = m_sum + value;
        m_lost += std::fabs(m_sum) >= std::fabs(value) ? (m_sum - sum) + value : (value - sum) + m_sum;
        m_sum = sum;
    }
    double Get() const { return m_sum + m_lost; }

private:
    double m_sum = 0, m_lost = 0;
};

struct Place {
    double x, y;
};

class RangeReader {
public:
    RangeReader(const ChartSeries& series, double from, double to)
        : m_series(series),
          m_points(series),
          m_leftOut(PointsLeftOut(series)),
          m_low(std::min(from, to)),
          m_high(std::max(from, to)) {}

    ChartRangeValues Read() {
        ForEachPlace([&](const Place& place) { Take(place); }, [&] { m_before.reset(); });
        ChartRangeValues values{.count = m_count, .width = m_high - m_low};
        const bool isSome = m_count > 0;
        values.mean = isSome ? m_y.Get() / double(m_count) : kNoNumber;
        values.minimum = isSome ? m_minimum : kNoNumber;
        values.maximum = isSome ? m_maximum : kNoNumber;
        values.area = !m_hasArea ? kNoNumber : m_moved < 0 ? -m_area.Get() : m_area.Get();
        values.difference = m_atLow && m_atHigh ? *m_atHigh - *m_atLow : kNoNumber;
        values.slope = Slope(m_x.Get() / double(m_count), values.mean);
        return values;
    }

private:
    bool IsCurve() const { return m_series.kind != ChartKind::kPoints && m_series.kind != ChartKind::kBars; }
    bool IsInside(double x) const { return x >= m_low && x <= m_high; }

    // Of points that rise only those in the range, and the next ones beside it, which the curve leads to.
    std::pair<std::size_t, std::size_t> Reach() const {
        if (!m_points.Totals().isRising) return {0, m_points.Count()};
        std::size_t begin = m_points.FirstFrom(m_low), end = m_points.FirstAbove(m_high);
        const auto isLeftOut = [&](std::size_t point) { return std::ranges::binary_search(m_leftOut, point); };
        while (begin > 0 && isLeftOut(--begin)) {
        }
        while (end < m_points.Count() && isLeftOut(end++)) {
        }
        return {begin, end};
    }

    template <class Step, class Gap> void ForEachPlace(const Step& step, const Gap& gap) const {
        const auto [from, to] = Reach();
        ForEachKept(m_leftOut, from, to, [&](std::size_t first, std::size_t end) {
            for (std::size_t i = first; i < end; ++i) {
                const Place place{m_points[i].GetXData(), m_points[i].GetYData()};
                if (std::isfinite(place.x) && std::isfinite(place.y)) {
                    step(place);
                } else {
                    gap();
                }
            }
        });
    }

    void Take(const Place& place) {
        if (IsInside(place.x)) {
            ++m_count;
            m_x.Add(place.x);
            m_y.Add(place.y);
            m_minimum = std::min(m_minimum, place.y);
            m_maximum = std::max(m_maximum, place.y);
            if (!IsCurve()) {
                if (!(place.x >= m_lowestX)) m_lowestX = place.x, m_atLow = place.y;
                if (!(place.x < m_highestX)) m_highestX = place.x, m_atHigh = place.y;
            }
        }
        if (IsCurve()) TakeEnds(place);
        if (m_before && m_series.kind != ChartKind::kBars) AddArea(*m_before, place);
        m_before = place;
    }

    // The value at x between two points.
    double Between(const Place& one, const Place& other, double x) const {
        if (m_series.kind == ChartKind::kSteps) return x == other.x ? other.y : one.y;
        const double share = other.x == one.x ? 1 : (x - one.x) / (other.x - one.x);
        return one.y * (1 - share) + other.y * share;
    }

    void TakeEnds(const Place& place) {
        const Place& before = m_before.value_or(place);
        const auto has = [&](double x) { return x >= std::min(before.x, place.x) && x <= std::max(before.x, place.x); };
        if (!m_atLow && has(m_low)) m_atLow = Between(before, place, m_low);
        if (has(m_high)) m_atHigh = Between(before, place, m_high);
    }

    void AddArea(const Place& before, const Place& place) {
        const double start = std::clamp(before.x, m_low, m_high), end = std::clamp(place.x, m_low, m_high);
        if (start == end) return;
        m_hasArea = true;
        const double width = end - start;
        m_moved += width;
        m_area.Add(m_series.kind == ChartKind::kSteps
                       ? before.y * width
                       : (Between(before, place, start) / 2 + Between(before, place, end) / 2) * width);
    }

    // About the means, so that no digits are lost where x is large.
    double Slope(double meanX, double meanY) const {
        Sum xx, xy;
        ForEachPlace(
            [&](const Place& place) {
                if (!IsInside(place.x)) return;
                xx.Add((place.x - meanX) * (place.x - meanX));
                xy.Add((place.x - meanX) * (place.y - meanY));
            },
            [] {});
        return xx.Get() > 0 ? xy.Get() / xx.Get() : kNoNumber;
    }

    const ChartSeries& m_series;
    const SeriesPoints m_points;
    const std::vector<std::size_t> m_leftOut;
    const double m_low, m_high;
    std::size_t m_count = 0;
    Sum m_x, m_y, m_area;
    double m_minimum = std::numeric_limits<double>::infinity(), m_maximum = -m_minimum;
    bool m_hasArea = false;
    double m_moved = 0;                                    // across: below 0 where x falls, as wavenumbers do
    std::optional<double> m_atLow, m_atHigh;               // at the ends of the range
    double m_lowestX = kNoNumber, m_highestX = kNoNumber;  // of points without a curve
    std::optional<Place> m_before;
};

std::string Word(const char* english, const char* japanese) {
    return TableLanguage() == Language::Japanese ? japanese : english;
}

std::string Times(const std::string& one, const std::string& other) {
    return one.empty() || other.empty() ? one + other : one + "\u00B7" + other;
}
std::string Per(const std::string& one, const std::string& other) {
    if (other.empty()) return one;
    return (one.empty() ? "1" : one) + "/" + other;
}

}  // namespace

ChartRangeValues ValuesInRange(const ChartSeries& series, double from, double to) {
    return RangeReader(series, from, to).Read();
}

std::vector<ChartRangeLine> LinesOfRange(const Chart& chart, const ChartNavigator& navigator, const ChartRange& range) {
    if (range.series >= chart.series.size()) return {};
    const ChartSeries& series = chart.series[range.series];
    const AxisPlaces *const x = navigator.PlacesOf(series.xAxis), *const y = navigator.PlacesOf(series.yAxis);
    if (x == nullptr || y == nullptr) return {};
    const ChartAxis &across = chart.axes[series.xAxis], &up = chart.axes[series.yAxis];
    const ChartRangeValues values = ValuesInRange(series, range.from, range.to);
    const std::string unitX = UnitOfDistances(across), unitY = UnitOfDistances(up);
    std::vector<ChartRangeLine> lines;
    const auto add = [&](std::string name, double value, const std::string& text) {
        if (std::isfinite(value)) lines.push_back({std::move(name), text});
    };
    add(Word("width", "幅"), values.width, DistanceText(across, *x, values.width));
    add(Word("difference", "差"), values.difference, DistanceText(up, *y, values.difference));
    add(Word("mean", "平均"), values.mean, ValueText(up, *y, values.mean));
    add(Word("minimum", "最小"), values.minimum, ValueText(up, *y, values.minimum));
    add(Word("maximum", "最大"), values.maximum, ValueText(up, *y, values.maximum));
    add(Word("area", "面積"), values.area, FourDigits(values.area, Times(unitY, unitX)));
    add(Word("slope", "傾き"), values.slope, FourDigits(values.slope, Per(unitY, unitX)));
    return lines;
}

}  // namespace qel
