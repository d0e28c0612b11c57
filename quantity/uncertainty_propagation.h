#pragma once

#include <cmath>
#include <limits>
#include <optional>
#include <span>
#include <vector>

#include "qellib10/quantity/formula_program.h"
#include "qellib10/quantity/monte_carlo.h"

namespace qel {

/// An uncertainty that is smaller may be what an underflow has left of it; a larger one is far above what got lost,
/// unless something huge multiplied that.
inline constexpr double kLeastCertain = 1e-150;

/// Whether a double has lost digits of the value since it is too small.
inline bool IsLostInDouble(const Decimal& value) {
    return !value.IsZero() && std::abs(value.ToDouble()) < std::numeric_limits<double>::min();
}

/// What a rounding with steps of 1 adds to a standard uncertainty: that of a rectangle of this width.
inline constexpr double kStepDeviation = 0.28867513459481287;
/// Of a part in the combined uncertainty, which it makes 4 % larger.
inline constexpr double kConsiderable = 0.3;

// As those of a formula, of any program.

std::optional<UncertaintyBudget> PropagateUncertainty(const FormulaProgram& program,
                                                      std::span<const UncertainInput> inputs,
                                                      const UncertaintyOptions& options, FormulaError& error);

/// @param steps gets what each rounding adds to the result, with the sign of its derivative
std::optional<UncertaintyBudget> PropagateUncertainty(const FormulaProgram& program,
                                                      std::span<const UncertainInput> inputs,
                                                      const UncertaintyOptions& options, FormulaError& error,
                                                      std::vector<double>& steps);

std::optional<MonteCarloResult> PropagateDistributions(const FormulaProgram& program,
                                                       std::span<const UncertainInput> inputs,
                                                       const MonteCarloOptions& options, FormulaError& error);

}  // namespace qel
