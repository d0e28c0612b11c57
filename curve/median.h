#pragma once

#include <algorithm>
#include <iterator>
#include <vector>

namespace qel {

inline double Median(double a, double b, double c) { return std::max(std::min(a, b), std::min(std::max(a, b), c)); }

/// The upper one of the two in the middle. @param values at least one
inline double MedianOf(std::vector<double> values) {
    const auto middle = values.begin() + std::ssize(values) / 2;
    std::ranges::nth_element(values, middle);
    return *middle;
}

}  // namespace qel
