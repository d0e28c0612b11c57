#include "qellib10/graph/chart_cells.h"

#include <algorithm>

namespace qel {

ChartBox Common(const ChartBox& one, const ChartBox& other) {
    return {std::max(one.left, other.left), std::max(one.top, other.top), std::min(one.right, other.right),
            std::min(one.bottom, other.bottom)};
}

ChartBox Grown(const ChartBox& box, double by) {
    return {box.left - by, box.top - by, box.right + by, box.bottom + by};
}

std::vector<PlotStripe> StripesOf(const ChartBox& plot, const AxisPlaces& places, bool isHorizontal) {
    if (places.parts.empty()) return {{plot, places}};
    std::vector<PlotStripe> stripes;
    for (const AxisPart& part : places.parts) {
        const auto [low, high] = std::minmax({part.from, part.to});
        if (!(low < high)) continue;
        stripes.push_back(
            {isHorizontal ? ChartBox{low, plot.top, high, plot.bottom} : ChartBox{plot.left, low, plot.right, high},
             part});
    }
    return stripes;
}

std::vector<AxisWay> WithoutGaps(const AxisPlaces& places, const AxisWay& way) {
    const double direction = (way.to < way.from) == (places.to < places.from) ? 1 : -1;
    std::vector<AxisWay> left;
    double from = way.from;
    const auto isBefore = [&](double one, double other) { return way.to < way.from ? one > other : one < other; };
    const auto nearer = [&](double one, double other) { return isBefore(one, other) ? one : other; };
    for (std::size_t i = 1; i < places.parts.size(); ++i) {
        // In the direction of the way.
        const std::size_t at = direction > 0 ? i : places.parts.size() - i;
        double start = places.parts[at - 1].to, end = places.parts[at].from;
        if (direction < 0) std::swap(start, end);
        const double to = nearer(start, way.to);
        if (isBefore(from, to)) left.push_back({from, to});
        if (isBefore(from, end)) from = end;
    }
    if (left.empty() || isBefore(from, way.to)) left.push_back({from, way.to});
    return left;
}

std::vector<ChartCell> CellsOf(const ChartBox& plot, const AxisPlaces& x, const AxisPlaces& y) {
    std::vector<ChartCell> cells;
    for (const PlotStripe& across : StripesOf(plot, x, true))
        for (const PlotStripe& up : StripesOf(plot, y, false))
            cells.push_back({Common(across.box, up.box), across.part, up.part});
    return cells;
}

}  // namespace qel
