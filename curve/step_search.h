#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "qellib10/curve/points.h"

namespace qel {

/// A volume is sure when so many standard errors are less than half an interval between readings.
inline constexpr double kSureErrors = 7;

/// Where a curve may have its end point, found by a local fit.
struct Step {
    double volume = 0;
    double signal = 0;       // there
    double slope = 0;        // there, negative on a falling curve
    std::size_t points = 0;  // that the fit was made through
    double error = 0;        // standard error of the volume
    double interval = 0;     // between the points around it, or the means of points
};

inline bool IsSure(const Step& step) { return kSureErrors * step.error <= step.interval / 2; }

/// 1 for a curve that rises from its first readings to its last ones, -1 for one that falls.
double Direction(const std::vector<double>& signal);

/// The interval between the neighbours of @p volume.
double IntervalAt(const std::vector<double>& volumes, double volume);

/// The steepest inflection of cubic polynomials through every run of 5, 6, 7 ... neighbouring points. It lies inside
/// its run, noise moves the slope there by no more than a tenth, the bend is certain, and the readings on both sides of
/// it rise as the fit does. Where noise could move it by more than half an interval, the most certain of the
/// inflections that are about as steep is taken. Of very many points means of neighbours are searched first, then the
/// points around what is found.
/// @return nothing for fewer than 5 points, and for a curve without a step that is clear of @p noise
std::optional<Step> SteepestStep(const CurvePoints& points, double direction, double noise);

}  // namespace qel
