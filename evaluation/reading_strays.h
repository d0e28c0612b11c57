#pragma once

#include "qellib10/evaluation/curve_data.h"

namespace qel {

/// Which points are strays: in a row of at most three that leaves the curve by more than 6 deviations of a difference
/// and comes back to it, at least three times as far as the curve moves before and after it; or the first or last
/// point, ten times as far from the next one as the next four are apart. A row that the curve rises to and falls from
/// on both sides, clear of its noise and of what is further out, is a peak.
/// @param places of the points among all, from which others were left out before: their neighbours are no strays
std::vector<bool> FindStrays(const MergedPoints& points, const std::vector<std::size_t>& places, double noise);

}  // namespace qel
