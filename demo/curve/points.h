#pragma once

#include <cstddef>
#include <vector>

#include "demo/curve/csv_table.h"

namespace titration {

/// Readings in the order of their volumes.
struct Points {
    std::vector<double> x, y;  // volume and signal, or what was made of it
};

/// Equal volumes averaged.
Points Merged(const Curve& curve);

/// A running median of 3, which leaves a steady rise or fall as it is.
Points Smoothed(Points points);

/// The means of @p group neighbouring points each; the last group may have fewer.
Points MeansOf(const Points& points, std::size_t group);

/// The slope of a curve: that of cubic polynomials through each @p run of neighbouring points, near their middle.
/// Points that determine no cubic are left out.
Points SlopeOf(const Points& points, std::size_t run);

double Median(double a, double b, double c);

/// The upper one of the two in the middle. @param values at least one
double MedianOf(std::vector<double> values);

}  // namespace titration
