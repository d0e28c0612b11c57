#pragma once

#include <optional>
#include <span>

#include "qellib10/evaluation/curve_data.h"
#include "qellib10/platform/algebra/least_squares.h"

namespace qel {

/// A straight line through readings.
struct StraightLine {
    double center = 0;     // its x, where the height is
    LeastSquares fit;      // height at the center, and slope
    double scatter = 0;    // standard deviation of a reading that counts once, about the line
    double bend = 0;       // slope at the end less that at the start, by a square term
    double bendError = 0;  // standard error of it

    double Slope() const { return fit.coefficients[1]; }
    double At(double place) const { return fit.coefficients[0] + Slope() * (place - center); }
    /// Whether a square term is certain, and changes the slope by more than @p most.
    bool IsBent(double most) const;
    /// The variance of the line at a place, by the readings' scatter about it.
    double Variance(double place) const;
};

/// @param weights one for each, or none
/// @param leastScatter the scatter of readings that are rounded to digits
/// @return nothing for fewer than 3 points
std::optional<StraightLine> FitLine(std::span<const double> x, std::span<const double> y,
                                    std::span<const double> weights, double leastScatter);

}  // namespace qel
