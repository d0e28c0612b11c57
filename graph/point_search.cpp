#include "qellib10/graph/point_search.h"

#include <cmath>

namespace qel {
namespace {

// Whether the place of a value is before another along rising values. A value without a place, on a logarithmic axis,
// is below all that have one.
bool IsBefore(const AxisPlaces& axis, double value, double place) {
    const double own = axis.Reached(value);
    return axis.to > axis.from ? !(own >= place) : !(own <= place);
}

}  // namespace

bool PointSearch::IsGapAt(std::size_t i) const {
    return std::isnan(x.At(points[i].GetXData())) || std::isnan(y.At(points[i].GetYData()));
}

double PointSearch::DistanceOf(std::size_t i, double across) const {
    return std::fabs(x.At(points[i].GetXData()) - across);
}

std::optional<std::size_t> PointSearch::Nearest(double across) const {
    return points.Totals().isRising ? NearestOfRising(across) : NearestRead(across);
}

std::optional<std::size_t> PointSearch::NearestRead(double across) const {
    std::optional<std::size_t> best;
    double least = 0;
    for (std::size_t i = 0; i < points.Count(); ++i) {
        const double distance = DistanceOf(i, across);
        if ((best && !(distance < least)) || IsGapAt(i)) continue;
        best = i;
        least = distance;
    }
    return best;
}

std::optional<std::size_t> PointSearch::NearestOfRising(double across) const {
    const std::size_t middle = points.FirstNot([&](double value) { return IsBefore(x, value, across); });
    std::size_t right = middle, left = middle;  // the number of the point, and the number after it
    while (right < points.Count() && IsGapAt(right)) ++right;
    while (left > 0 && IsGapAt(left - 1)) --left;
    const bool isRight = right < points.Count();
    if (left == 0) return isRight ? std::optional(right) : std::nullopt;
    const double least = DistanceOf(left - 1, across);
    if (isRight && DistanceOf(right, across) < least) return right;
    // The first one that is as near.
    left = points.FirstNot(
        [&](double value) { return IsBefore(x, value, across) && !(std::fabs(x.Reached(value) - across) <= least); });
    while (IsGapAt(left)) ++left;
    return left;
}

std::pair<std::size_t, std::size_t> PointSearch::Across(double from, double to) const {
    if (!points.Totals().isRising) return {0, points.Count()};
    if (x.to < x.from) std::swap(from, to);
    return {points.FirstNot([&](double value) { return IsBefore(x, value, from); }),
            points.FirstNot([&](double value) { return IsBefore(x, value, to) || x.Reached(value) == to; })};
}

std::vector<std::size_t> PointSearch::In(const ChartBox& box) const {
    const auto [begin, end] = Across(box.left, box.right);
    std::vector<std::size_t> inside;
    for (std::size_t i = begin; i < end; ++i) {
        const double across = x.At(points[i].GetXData()), up = y.At(points[i].GetYData());
        if (across >= box.left && across <= box.right && up >= box.top && up <= box.bottom) inside.push_back(i);
    }
    return inside;
}

}  // namespace qel
