#include "qellib10/graph/left_out.h"

#include <algorithm>
#include <iterator>

#include "qellib10/graph/chart_scale.h"
#include "qellib10/graph/series_points.h"

namespace qel {
namespace {

// Each once, in order, of those that exist.
std::vector<std::size_t> InOrder(std::vector<std::size_t> points, const ChartSeries& series) {
    std::erase_if(points, [count = SeriesPoints(series).Count()](std::size_t point) { return point >= count; });
    std::ranges::sort(points);
    points.erase(std::unique(points.begin(), points.end()), points.end());
    return points;
}

// The points that are left out, each once, in order, with the first reason.
std::vector<const ChartLeftOut*> LeftOutOf(const ChartSeries& series) {
    const std::size_t count = SeriesPoints(series).Count();
    std::vector<const ChartLeftOut*> points;
    for (const ChartLeftOut& each : series.leftOut)
        if (each.point < count) points.push_back(&each);
    std::ranges::stable_sort(points, {}, &ChartLeftOut::point);
    const auto isSame = [](const ChartLeftOut* one, const ChartLeftOut* other) { return one->point == other->point; };
    points.erase(std::unique(points.begin(), points.end(), isSame), points.end());
    return points;
}

}  // namespace

std::optional<std::string> ReasonLeftOut(const ChartSeries& series, std::size_t point) {
    const auto found = std::ranges::find(series.leftOut, point, &ChartLeftOut::point);
    if (found == series.leftOut.end() || point >= SeriesPoints(series).Count()) return {};
    return found->reason;
}

bool ToggleLeftOut(ChartSeries& series, const std::vector<std::size_t>& points, std::string_view reason) {
    const std::vector<std::size_t> chosen = InOrder(points, series), before = PointsLeftOut(series);
    std::vector<std::size_t> added;
    std::ranges::set_difference(chosen, before, std::back_inserter(added));
    if (added.empty()) {
        std::erase_if(series.leftOut,
                      [&](const ChartLeftOut& each) { return std::ranges::binary_search(chosen, each.point); });
    }
    for (const std::size_t point : added) series.leftOut.push_back({point, std::string(reason)});
    return !chosen.empty();
}

std::vector<std::size_t> PointsLeftOut(const ChartSeries& series) {
    std::vector<std::size_t> points;
    for (const ChartLeftOut* each : LeftOutOf(series)) points.push_back(each->point);
    return points;
}

std::vector<LeftOutReason> ReasonsLeftOut(const Chart& chart) {
    std::vector<LeftOutReason> reasons;
    for (const ChartSeries& series : chart.series) {
        if (!HasItsAxes(chart, series)) continue;
        for (const ChartLeftOut* each : LeftOutOf(series)) {
            const auto found = std::ranges::find(reasons, each->reason, &LeftOutReason::reason);
            if (found == reasons.end()) {
                reasons.push_back({each->reason, 1});
            } else {
                ++found->count;
            }
        }
    }
    return reasons;
}

}  // namespace qel
