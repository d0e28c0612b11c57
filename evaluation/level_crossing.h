#pragma once

#include <functional>

#include "qellib10/evaluation/local_fit.h"

namespace qel {

/// Where a smoothed curve crosses a line.
struct LevelCrossing {
    CurveValue at, slope;  // of the curve there
};

/// The crossing between the points @p before and the next one, whose smoothed signals are on different sides of the
/// line. The points on both sides have polynomials of their own; each counts as near as it is.
LevelCrossing RefineCrossing(const CurveData& data, LocalFit& fit, std::span<const double> y, std::size_t before,
                             const std::function<double(double)>& level);

}  // namespace qel
