#pragma once

#include <string>

namespace axes {

/// The grid lines of an axis: round numbers.
struct AxisSteps {
    double step = 1;
    double first = 0;  // in steps, a whole number
    int count = 1;     // steps between the ends

    double Value(int line) const { return (first + line) * step; }
    std::string Text(int line) const;
};

/// At most @p most steps of 1, 2, 2.5 or 5 with zeros that take in all from @p low to @p high.
AxisSteps StepsOver(double low, double high, int most);

}  // namespace axes
