#include "qellib10/curve/points.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <span>
#include <string>
#include <utility>

#include "qellib10/curve/cubic_fit.h"
#include "qellib10/curve/median.h"
#include "qellib10/platform/error.h"

namespace qel {
namespace {

void RequirePairs(const std::vector<double>& x, const std::vector<double>& y) {
    if (x.size() != y.size()) {
        throw DataError("a curve has " + std::to_string(x.size()) + " volumes and " + std::to_string(y.size()) +
                        " signals");
    }
    for (std::size_t i = 0; i < x.size(); ++i) {
        if (!std::isfinite(x[i]) || !std::isfinite(y[i]))
            throw DataError("reading " + std::to_string(i + 1) + " of a curve is not a finite number");
    }
}

}  // namespace

CurvePoints MergeRepeats(const TitrationCurve& curve) {
    RequirePairs(curve.volume, curve.signal);
    std::map<double, std::pair<double, int>> sums;
    for (std::size_t i = 0; i < curve.volume.size(); ++i) {
        auto& [sum, count] = sums[curve.volume[i]];
        sum += curve.signal[i];
        ++count;
    }
    CurvePoints points;
    for (const auto& [volume, sum] : sums) {
        points.x.push_back(volume);
        points.y.push_back(sum.first / sum.second);
    }
    return points;
}

CurvePoints SmoothByMedian(CurvePoints points) {
    RequirePairs(points.x, points.y);
    const std::vector<double> y = points.y;
    for (std::size_t i = 1; i + 1 < y.size(); ++i) points.y[i] = Median(y[i - 1], y[i], y[i + 1]);
    return points;
}

CurvePoints AverageGroups(const CurvePoints& points, std::size_t group) {
    RequirePairs(points.x, points.y);
    group = std::max<std::size_t>(group, 1);
    CurvePoints means;
    for (std::size_t first = 0; first < points.x.size(); first += group) {
        const std::size_t count = std::min(group, points.x.size() - first);
        double x = 0, y = 0;
        for (std::size_t i = first; i < first + count; ++i) {
            x += points.x[i];
            y += points.y[i];
        }
        means.x.push_back(x / static_cast<double>(count));
        means.y.push_back(y / static_cast<double>(count));
    }
    return means;
}

CurvePoints Differentiate(const CurvePoints& points, std::size_t run) {
    RequirePairs(points.x, points.y);
    CurvePoints slope;
    const std::size_t count = points.x.size(), length = std::min(run, count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t first = std::min(i - std::min(i, length / 2), count - length);
        const auto fit =
            CubicFit::Through(std::span(points.x).subspan(first, length), std::span(points.y).subspan(first, length));
        if (!fit) continue;
        slope.x.push_back(points.x[i]);
        slope.y.push_back(fit->Slope(points.x[i]));
    }
    return slope;
}

}  // namespace qel
