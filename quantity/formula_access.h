#pragma once

#include "qellib10/quantity/formula.h"
#include "qellib10/quantity/formula_program.h"
#include "qellib10/quantity/quantity_formula.h"

namespace qel {

/// The steps of a formula, for what else is computed from them. They live as long as the formula or a copy of it.
const FormulaProgram& ProgramOf(const Formula& formula);
/// The same with the conversions of its units.
const FormulaProgram& ProgramOf(const QuantityFormula& formula);

}  // namespace qel
