#pragma once

#include "qellib10/evaluation/curve_data.h"

namespace qel {

/// Readings with those at the same x together.
struct MergedReadings : MergedPoints {
    std::vector<std::size_t> starts;  // of each point's readings in the order, and at last the number of all
    double squares = 0;               // of repeats about their means
    std::size_t degrees = 0;
};

/// @param order indexes of the readings, by rising x
/// @param leftOut for each reading, whether it plays no part; at least one of each x does
MergedReadings MergeReadings(std::span<const CurvePoint> readings, const std::vector<std::size_t>& order,
                             RepeatedReadings repeats, const std::vector<bool>& leftOut);

/// Marks strays among repeated readings: more than 6 deviations of a difference from the others at the same x. Of two
/// readings, the one that is further from the curve beside is a stray, if the other one is on it.
/// @param noise of a reading; 0: it is estimated
void MarkRepeatStrays(std::span<const CurvePoint> readings, const std::vector<std::size_t>& order, double noise,
                      double digit, std::vector<bool>& strays);

}  // namespace qel
