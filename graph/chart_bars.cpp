#include "qellib10/graph/chart_bars.h"

#include <algorithm>
#include <cmath>

namespace qel {
namespace {

constexpr double kBarShare = 0.8;      // of the distance of bars that they take together
constexpr double kLoneBarShare = 0.1;  // of the plot that a single bar takes

}  // namespace

BarPlaces PlacesOfBars(const ChartSnapshot& data, std::size_t index, const AxisPart& xPlaces) {
    const Chart& chart = data.chart;
    const ChartSeries& series = chart.series[index];
    // Bars of one place are side by side; those that are stacked take one place together.
    std::size_t places = 0, own = 0;
    std::optional<std::size_t> stack;
    std::vector<double> xs;
    for (std::size_t i = 0; i < chart.series.size(); ++i) {
        const ChartSeries& other = chart.series[i];
        if (other.kind != ChartKind::kBars || !HasItsAxes(chart, other) || other.xAxis != series.xAxis) continue;
        const bool isNew = !other.isStacked || !stack;
        const std::size_t place = isNew ? places++ : *stack;
        if (other.isStacked) stack = place;
        if (i == index) own = place;
        for (std::size_t point = 0; point < data.points[i].Count(); ++point) {
            const double x = xPlaces.At(data.points[i][point].GetXData());
            if (std::isfinite(x)) xs.push_back(x);
        }
    }
    std::ranges::sort(xs);
    double distance = std::fabs(xPlaces.to - xPlaces.from) * kLoneBarShare / kBarShare;
    bool isFirst = true;
    for (std::size_t i = 1; i < xs.size(); ++i) {
        const double gap = xs[i] - xs[i - 1];
        if (gap < 1e-6) continue;
        distance = isFirst ? gap : std::min(distance, gap);
        isFirst = false;
    }
    const double together = distance * kBarShare;
    const double width = together / static_cast<double>(std::max<std::size_t>(1, places));
    return {static_cast<double>(own) * width - together / 2, width};
}

}  // namespace qel
