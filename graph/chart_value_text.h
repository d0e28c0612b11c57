#pragma once

#include <string>

#include "qellib10/graph/chart.h"

namespace qel {

/// A value of an axis for a reader, with its unit: a number with the decimals that tell a thousandth of the shown range
/// apart, "7.05 mL", of a logarithmic axis with four digits, in the axis' prefix, "2.500 nA"; a time with its date and
/// zone, "2026-11-28 12:30:05 UTC"; the name of a category.
std::string ValueText(const ChartAxis& axis, const AxisPlaces& places, double value);

/// A distance of two values of an axis, in the same way: of times "90.5 s".
std::string DistanceText(const ChartAxis& axis, const AxisPlaces& places, double distance);

/// A number of four digits, and its unit.
std::string FourDigits(double value, const std::string& unit);

/// The unit of distances on an axis: its own, or s for times.
std::string UnitOfDistances(const ChartAxis& axis);

}  // namespace qel
