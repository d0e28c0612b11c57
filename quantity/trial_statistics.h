#pragma once

#include <vector>

#include "qellib10/quantity/monte_carlo.h"

namespace qel {

/// What the results of trials say (JCGM 101 7.6, 7.7).
/// @param results those that are defined, 2 or more; they are brought into another order
/// @param probability less than one at least of the trials outside
MonteCarloResult StatisticsOf(std::vector<double>& results, double probability);

/// How many of @p trials are within a coverage interval.
std::size_t TrialsWithin(std::size_t trials, double probability);

}  // namespace qel
