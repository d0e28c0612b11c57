#pragma once

#include <functional>
#include <optional>

#include "qellib10/evaluation/curve_data.h"

namespace qel {

/// A straight line that a curve crosses.
struct CrossedLine {
    std::function<double(double)> at;
    double slope = 0;
    std::function<double(double)> variance;  // by noise
    std::string name;                        // "the level 7"
};

/// Where a curve crosses a line.
struct LineCrossing {
    std::size_t before = 0;       // the crossing is between this point and the next one
    double place = 0, slope = 0;  // slope: of the curve, less that of the line
    double noise = 0, shape = 0;  // standard uncertainties of the place: by the readings' noise, and by how the curve
                                  // may go between its readings
    CurveResult refusal;
};

/// The only crossing within the points from @p first up to @p last, by local polynomials of at most @p window points;
/// where none follows the readings, by the straight line between the two readings beside.
LineCrossing FindCrossing(const CurveData& data, std::size_t first, std::size_t last, std::size_t window,
                          std::size_t degree, const CrossedLine& line);

}  // namespace qel
