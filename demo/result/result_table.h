#pragma once

#include <string>

#include "demo/result/calculation.h"

namespace titration {

/// Writes the values that the formula refers to and the result to @p path, as comma-separated text that spreadsheets
/// read: a line of names, then one line a value.
/// @throws Failure when the system refuses
/// @return the number of lines
int WriteResultTable(const Result& result, const std::string& path);

}  // namespace titration
