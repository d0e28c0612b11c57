#pragma once

#include <string>

namespace qel {

/// What follows the digits of a value: " mL"; nothing for an empty unit. A unit that begins with a number has a sign
/// before it, " × 0.001*s", since people read 500 0.001 and 12 345 as one number. CalculationInput::Of reads it.
std::string AfterValue(const std::string& unit);

}  // namespace qel
