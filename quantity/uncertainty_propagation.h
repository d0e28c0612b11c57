#pragma once

#include <optional>
#include <span>

#include "qellib10/quantity/formula_program.h"
#include "qellib10/quantity/uncertainty_budget.h"

namespace qel {

/// As that of a formula.
std::optional<UncertaintyBudget> PropagateUncertainty(const FormulaProgram& program,
                                                      std::span<const UncertainInput> inputs,
                                                      const UncertaintyOptions& options, FormulaError& error);

}  // namespace qel
