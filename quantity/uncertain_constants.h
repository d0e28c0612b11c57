#pragma once

#include <vector>

#include "qellib10/quantity/formula_program.h"
#include "qellib10/quantity/uncertainty.h"

namespace qel {

/// Whether a program names constants that are not exact, such as const.u.
bool HasUncertainConstants(const FormulaProgram& program);

/// The program with such constants as variables, each at a position after those of @p inputs, which get their values
/// and standard uncertainties. Each is its own source in all formulas, "const.u"; that some constants are correlated
/// is not regarded.
FormulaProgram WithUncertainConstants(FormulaProgram program, std::vector<UncertainInput>& inputs);

}  // namespace qel
