#pragma once

#include <span>

#include "qellib10/platform/decimal/decimal.h"
#include "qellib10/quantity/formula_program.h"

namespace qel {

// The steps of a formula on exact numbers; a truth is 1 or 0. Each adds what happened to the flags.

/// The operand of a number or a constant; it is the program's, or stays.
const Decimal& WrittenOperand(const FormulaProgram& program, const FormulaStep& step, DecimalFlags& flags);

/// @throws FormulaError where there is no finite result
Decimal ExactOne(const FormulaProgram& program, const FormulaStep& step, const Decimal& value, DecimalFlags& flags);
Decimal ExactTwo(const FormulaStep& step, const Decimal& left, const Decimal& right, DecimalFlags& flags);
Decimal ExactMany(const FormulaStep& step, std::span<const Decimal> values, DecimalFlags& flags);

}  // namespace qel
