#pragma once

#include <cmath>
#include <functional>
#include <random>
#include <vector>

#include "qellib10/evaluation/curve.h"

/// How often the value of many made curves is within two standard uncertainties of the true one.
struct Coverage {
    int tried = 0, covered = 0, refused = 0;

    void Add(const qel::CurveResult& result, double truth) {
        if (!result) return ++refused, void();
        ++tried;
        covered += std::abs(*result.value - truth) <= 2 * result.uncertainty ? 1 : 0;
    }
    double Percent() const { return 100.0 * covered / std::max(tried, 1); }
};

using Shape = std::function<double(double)>;

/// Readings of a shape at @p count places from @p first to @p last, at uneven steps, with noise.
inline std::vector<qel::CurvePoint> Readings(std::mt19937& random, const Shape& shape, double first, double last,
                                             int count, double noise) {
    std::normal_distribution<double> error;
    std::uniform_real_distribution<double> move(-0.3, 0.3);
    std::vector<qel::CurvePoint> points;
    for (int i = 0; i < count; ++i) {
        const double x = first + (last - first) * (i + move(random)) / (count - 1);
        points.push_back({x, shape(x) + noise * error(random)});
    }
    return points;
}
