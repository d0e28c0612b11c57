#pragma once

#include <optional>
#include <string>

#include "qellib10/platform/json/json_value.h"
#include "qellib10/quantity/calculation.h"

namespace qel {

/// All of a calculation as JSON: doubles with the fewest digits that read back as the same, decimals as texts.
JsonValue JsonOf(const Calculation& calculation);
/// Reads it. Members that it does not know are passed over, those that are missing have their defaults.
/// @return nothing where a member is of another type or out of its range; @p error then says which
std::optional<Calculation> CalculationOf(const JsonValue& json, std::string& error);

}  // namespace qel
