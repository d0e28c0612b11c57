#pragma once

#include <string>

#include "demo/result/calculation.h"

namespace titration {

/// Writes the values that the formula uses and the result to @p path, as comma-separated text for spreadsheets: a line
/// of names, then one line per value.
/// @throws Failure if the system refuses
/// @return the number of lines
int WriteResultTable(const Result& result, const std::string& path);

}  // namespace titration
