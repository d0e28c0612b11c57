#pragma once

#include <span>

#include "qellib10/quantity/formula_program.h"

namespace qel {

/// A formula and all others that it needs, as one program of the inputs: each formula is carried out once, before those
/// that use it, also where no branch takes its result. So a common input is one variable, whichever formulas name it.
///
/// Variables are in the order in which the formula would name them if each other one was written into it where it is
/// named first; so trials draw the same for both.
///
/// Steps of other formulas get the place of the name by which @p whole uses them, since an error is shown in its text.
/// @param others by position in the scope, and none needs itself; null for an input
FormulaProgram JoinedProgram(const FormulaProgram& whole, std::span<const FormulaProgram* const> others);

}  // namespace qel
