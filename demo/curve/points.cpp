#include "demo/curve/points.h"

#include <algorithm>
#include <map>
#include <span>
#include <utility>

#include "demo/curve/cubic_fit.h"

namespace titration {

Points Merged(const Curve& curve) {
    std::map<double, std::pair<double, int>> sums;
    for (std::size_t i = 0; i < curve.volume.size(); ++i) {
        auto& [sum, count] = sums[curve.volume[i]];
        sum += curve.signal[i];
        ++count;
    }
    Points points;
    for (const auto& [volume, sum] : sums) {
        points.x.push_back(volume);
        points.y.push_back(sum.first / sum.second);
    }
    return points;
}

Points Smoothed(Points points) {
    const std::vector<double> y = points.y;
    for (std::size_t i = 1; i + 1 < y.size(); ++i) points.y[i] = Median(y[i - 1], y[i], y[i + 1]);
    return points;
}

Points MeansOf(const Points& points, std::size_t group) {
    Points means;
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

Points SlopeOf(const Points& points, std::size_t run) {
    Points slope;
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

double Median(double a, double b, double c) { return std::max(std::min(a, b), std::min(std::max(a, b), c)); }

double MedianOf(std::vector<double> values) {
    const auto middle = values.begin() + std::ssize(values) / 2;
    std::ranges::nth_element(values, middle);
    return *middle;
}

}  // namespace titration
