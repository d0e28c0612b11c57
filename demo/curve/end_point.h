#pragma once

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "demo/curve/csv_table.h"
#include "demo/curve/points.h"

namespace titration {

struct EndPoint {
    double volume = 0;                // where the slope is largest: a zero of the curve's second derivative
    double signal = 0;                // there
    double slope = 0;                 // there, signal per volume, negative on a falling curve
    double noise = 0;                 // standard deviation of a reading, estimated from the curve itself
    std::size_t points = 0;           // readings that the local fit was made through
    std::vector<std::size_t> strays;  // readings that were left out, by their place in the curve
    std::optional<std::pair<double, double>> gap;  // the volumes of the readings around it, where they are far apart
};

/// The end point of a rising or falling titration curve with any, also uneven, steps and in any order of its points;
/// equal volumes are averaged.
///
/// Readings that leave the curve for up to three readings are left out first (see StrayReadings). The end point is the
/// steepest inflection of cubic polynomials that are fitted by least squares through every run of 5, 6, 7 ... of the
/// other points, which smooths as Savitzky and Golay do, but for uneven steps (see SteepestStep). Short runs serve
/// clean curves, and long ones noisy curves. It is refused where strays leave its place open, where the curve comes
/// back over the step, and where the noise is too large for half an interval between readings.
///
/// @throws Failure for fewer than 5 different volumes, and when there is no end point that is certain; it names why
EndPoint FindEndPoint(const Curve& curve);

/// The points that an end point was found in.
Points UsedPoints(const Curve& curve, const EndPoint& endPoint);

}  // namespace titration
