#pragma once

#include <string>
#include <vector>

#include <qellib10/quantity.h>

namespace tool {

/// A value as the command line has it, in UTF-8:
///
///     NAME=READING [UNIT] [; WHAT=...]...
///
///     u=0.013          standard uncertainty           s=0.012/10   standard deviation of one of 10 readings
///     u=0.013/9        with 9 degrees of freedom      cert=0.03/2  certificate: U and k
///     rect=0.05        half-width, rectangular        source=NAME  of the uncertainties after it
///     tri=0.05         half-width, triangular         from=TEXT    where the value is from
///
/// Uncertainties are in the unit of the value. With a minus sign the source moves the value in the opposite direction.
/// @throws CLI::ValidationError
qel::CalculationInput InputOf(const std::string& assignment);

/// A,B,R: two of @p inputs, which have uncertainties, and their correlation coefficient. @throws CLI::ValidationError
qel::InputCorrelation CorrelationOf(const std::string& text, const std::vector<qel::CalculationInput>& inputs);

/// NAME=FORMULA [; unit=UNIT]. @throws CLI::ValidationError
qel::CalculationFormula FormulaOf(const std::string& assignment);

}  // namespace tool
