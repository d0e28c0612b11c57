#include "axis_steps.h"

#include <algorithm>
#include <cmath>

#include <qellib10/qellib10.h>

namespace axes {
namespace {

constexpr double kRound[] = {1, 2, 2.5, 5, 10, 20, 25, 50, 100};

}  // namespace

std::string AxisSteps::Text(int line) const {
    CString text;
    text.Format("%.10g", Value(line));
    return std::string(text);
}

AxisSteps StepsOver(double low, double high, int most) {
    const double smallest = high / most - low / most;
    const double decade = smallest > 0 ? std::pow(10, std::floor(std::log10(smallest))) : 1;
    AxisSteps steps;
    for (const double round : kRound) {
        steps.step = round * decade;
        steps.first = std::floor(low / steps.step);
        const double count = std::ceil(high / steps.step) - steps.first;
        steps.count = count >= 1 && count <= most ? static_cast<int>(count) : most;
        if (count <= most) break;
    }
    return steps;
}

}  // namespace axes
