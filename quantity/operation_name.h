#pragma once

#include <string_view>

#include "qellib10/quantity/formula_program.h"

namespace qel {

/// As it is written in a formula, "number", "constant" or "variable"; of a negation "-".
std::string_view NameOf(FormulaOperation operation);

}  // namespace qel
