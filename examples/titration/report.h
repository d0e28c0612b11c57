#pragma once

#include <string>

#include "determination.h"

namespace titration {

/// One fact a line.
std::string Report(const Determination& determination);

// The same facts for other reports.

/// A column's name, or "column 2".
std::string ColumnText(const std::string& column);
/// The limits and whether they are kept; empty when there are none.
std::string LimitText(const Settings& settings, double value);

}  // namespace titration
