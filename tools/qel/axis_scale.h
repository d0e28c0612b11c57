#pragma once

#include <vector>

namespace tool {

/// The ends of an axis at whole multiples of a round step, and the number of steps between them.
struct AxisScale {
    double minimum = 0, maximum = 1;
    int steps = 1, decimals = 0, digits = 1;  ///< digits: of the larger end, before the point, with its sign
};

/// At most 10 steps of 1, 2 or 5 times a power of ten that include all values except NaN; at least one step.
AxisScale ScaleOver(const std::vector<double>& values);

/// From @p minimum to @p maximum in one step.
AxisScale ScaleBetween(double minimum, double maximum);

}  // namespace tool
