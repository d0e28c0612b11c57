#pragma once

#include "qellib10/evaluation/curve_data.h"

namespace qel {

/// A peak of a smoothed curve, by indexes of its points.
struct FoundPeak {
    std::size_t top = 0, first = 0, last = 0;
    std::size_t start = 0, end = 0;  // the lowest points to the peaks beside, or the ends of the curve
};

/// The places that are higher than zero, and than the lowest places on both sides up to the next one, by their
/// @p leastHeight at least. Each peak goes to where the curve comes to zero, to the lowest point before the next peak
/// or to an end.
std::vector<FoundPeak> FindPeaks(const std::vector<double>& smoothed, const std::vector<double>& leastHeight);

}  // namespace qel
