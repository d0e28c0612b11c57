#pragma once

#include <string>

#include "qellib10/quantity/formula_program.h"
#include "qellib10/quantity/reading.h"
#include "qellib10/quantity/unit.h"

namespace qel {

/// What a person should look at again although it can be computed. @return empty where there is nothing to say
std::string RemarkOnTemperature(const std::string& name, Reading::Kind kind, const Decimal& value, const Unit& unit);
/// @param unit that the result of @p program is converted to
std::string RemarkOnFactor(const std::string& name, const FormulaProgram& program, const Unit& unit);

}  // namespace qel
