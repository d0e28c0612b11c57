#pragma once

#include <cstddef>
#include <string_view>

#include "qellib10/quantity/formula_program.h"
#include "qellib10/quantity/formula_scope.h"

namespace qel {

/// Bytes of UTF-8; more than the 255 bytes in a code page that the evaluator takes.
inline constexpr std::size_t kLongestKeptFormula = 1020;

/// Parses a formula as CQWCalc does. @throws FormulaError
FormulaProgram ParseKept(std::string_view text, const FormulaScope& scope);

}  // namespace qel
