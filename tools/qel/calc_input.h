#pragma once

#include <string>

#include <qellib10/quantity.h>

namespace tool {

/// A value as the command line has it, in UTF-8:
///
///     NAME=READING [UNIT] [; WHAT=...]...
///
///     u=0.013          standard uncertainty           s=0.012/10   standard deviation of one of 10 readings
///     rect=0.05        half-width, rectangular        cert=0.03/2  certificate: U and k
///     tri=0.05         half-width, triangular         source=NAME  of the uncertainties after it
///     from=TEXT        where the value is from
///
/// Uncertainties are in the unit of the value.
/// @throws CLI::ValidationError
qel::CalculationInput InputOf(const std::string& assignment);

/// NAME=FORMULA [; unit=UNIT]. @throws CLI::ValidationError
qel::CalculationFormula FormulaOf(const std::string& assignment);

}  // namespace tool
