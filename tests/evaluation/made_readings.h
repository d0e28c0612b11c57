#pragma once

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>
#include <vector>

#include "qellib10/evaluation/curve.h"

/// How often the values of made curves are within two standard uncertainties of the true ones.
struct Coverage {
    int tried = 0, covered = 0, refused = 0;
    double squaresOfErrors = 0, squaresOfUncertainties = 0;

    void Add(const qel::CurveResult& result, double truth) {
        if (!result) return ++refused, void();
        const double error = std::abs(*result.value - truth);
        ++tried;
        covered += error <= 2 * result.uncertainty ? 1 : 0;
        squaresOfErrors += error * error;
        squaresOfUncertainties += result.uncertainty * result.uncertainty;
    }
    void Add(const Coverage& other) {
        tried += other.tried;
        covered += other.covered;
        refused += other.refused;
        squaresOfErrors += other.squaresOfErrors;
        squaresOfUncertainties += other.squaresOfUncertainties;
    }
    double Percent() const { return 100.0 * covered / std::max(tried, 1); }
    /// How much larger uncertainties are than errors.
    double Excess() const { return std::sqrt(squaresOfUncertainties / squaresOfErrors); }
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

/// A titration up to @p last: even steps, uneven ones, or short ones where the signal changes much.
enum class Dosing { kEven, kUneven, kDynamic };

inline std::vector<qel::CurvePoint> Titrated(std::mt19937& random, const Shape& shape, Dosing dosing, double step,
                                             double last, double noise) {
    std::normal_distribution<double> error;
    std::uniform_real_distribution<double> part(0, 1);
    const double range = std::abs(shape(last) - shape(0));
    std::vector<qel::CurvePoint> points;
    for (double x = step * part(random); x <= last;) {
        points.push_back({x, shape(x) + noise * error(random)});
        const double change = std::abs(shape(x + step / 10) - shape(x)) / range * 10;  // of a whole step
        if (dosing == Dosing::kEven) x += step;
        if (dosing == Dosing::kUneven) x += step * (0.3 + 1.4 * part(random));
        if (dosing == Dosing::kDynamic) x += step * std::clamp(0.03 / change, 0.1, 2.0);
    }
    return points;
}
