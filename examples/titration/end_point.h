#pragma once

#include <cstddef>

#include "csv_table.h"

namespace titration {

struct EndPoint {
    double volume;       // where the slope is largest: a zero of the curve's second derivative
    double signal;       // there
    double slope;        // there, signal per volume, negative on a falling curve
    double noise;        // standard deviation of a reading, estimated from the curve itself
    std::size_t points;  // readings that the local fit was made through
};

/// The end point of a rising or falling titration curve with any, also uneven, steps and in any order of its points;
/// equal volumes are averaged.
///
/// Cubic polynomials are fitted by least squares through every run of 5, 6, 7 ... neighbouring points, which smooths as
/// Savitzky and Golay do, but for uneven steps. The inflection of each is a candidate when it lies inside its run, when
/// noise moves the slope there by no more than a tenth, and when the bend is certain (4 standard errors). So short runs
/// serve clean curves, and long ones noisy curves. The steepest candidate in the curve's direction is the end point.
/// A single stray reading is taken out before by a running median of 3, which leaves a steady rise or fall as it is.
///
/// @throws Failure for fewer than 5 different volumes, and when no candidate is left: a straight line, or only noise
EndPoint FindEndPoint(const Curve& curve);

}  // namespace titration
