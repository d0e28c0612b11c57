#pragma once

#include <optional>
#include <span>

#include "qellib10/quantity/formula_program.h"
#include "qellib10/quantity/monte_carlo.h"

namespace qel {

// As those of a formula, of any program.

std::optional<UncertaintyBudget> PropagateUncertainty(const FormulaProgram& program,
                                                      std::span<const UncertainInput> inputs,
                                                      const UncertaintyOptions& options, FormulaError& error);

std::optional<MonteCarloResult> PropagateDistributions(const FormulaProgram& program,
                                                       std::span<const UncertainInput> inputs,
                                                       const MonteCarloOptions& options, FormulaError& error);

}  // namespace qel
