#pragma once

#include <vector>

namespace tool {

/// The ends of an axis at whole multiples of a round step, and how many steps lie between them.
struct AxisScale {
    double minimum = 0, maximum = 1;
    int steps = 1, decimals = 0, digits = 1;  ///< digits: of the larger end, before the point, with its sign
};

/// At most 10 steps of 1, 2 or 5 with zeros, that take in all values but NaN; there is one at least.
AxisScale ScaleOver(const std::vector<double>& values);

/// From @p minimum to @p maximum in a step.
AxisScale ScaleBetween(double minimum, double maximum);

}  // namespace tool
