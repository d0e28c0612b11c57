#pragma once

#include "qellib10/evaluation/curve_data.h"

namespace qel {

struct ReadingNoise {
    double deviation = 0, degreesOfFreedom = 1;
};

/// The standard deviation of a reading, from points of which few are strays. See Curve::Noise.
/// @param repeats the sum of squares of readings about the mean of their x
/// @param repeatDegrees its degrees of freedom
ReadingNoise EstimateNoise(const MergedPoints& points, double repeats, std::size_t repeatDegrees);

/// The upper one of the two in the middle. @param values at least one
double MedianIn(std::vector<double>& values);

/// Which points are in a row of at most three that leaves the curve by more than 6 deviations of a reading and comes
/// back to it, at least three times as far as the points before and after it move.
std::vector<bool> FindStrays(const MergedPoints& points, double noise);

/// Where the parts between pauses start, and at last the number of points.
std::vector<std::size_t> FindParts(const std::vector<double>& x);

}  // namespace qel
