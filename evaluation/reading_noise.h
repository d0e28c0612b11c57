#pragma once

#include "qellib10/evaluation/curve_data.h"

namespace qel {

inline constexpr double kNormalQuartile =
    0.6744897501960817;  // of a standard normal variable: its median distance from 0

inline constexpr std::size_t kFewestRepeats = 10;  // degrees of freedom that show a noise of repeats

struct ReadingNoise {
    double deviation = 0, degreesOfFreedom = 1;
};

/// The standard deviation of a reading, from points of which few are strays. See Curve::Noise.
/// @param repeats the sum of squares of readings about the mean of their x
/// @param repeatDegrees its degrees of freedom
/// @param digit see DigitOf
ReadingNoise EstimateNoise(const MergedPoints& points, double repeats, std::size_t repeatDegrees, double digit);

/// The last digit of an instrument: all readings are multiples of it. 0 where there is none.
double DigitOf(std::span<const CurvePoint> readings);

/// The upper one of the two in the middle. @param values at least one
double MedianIn(std::vector<double>& values);

/// Where the parts between pauses start, and at last the number of points.
std::vector<std::size_t> FindParts(const std::vector<double>& x);

}  // namespace qel
