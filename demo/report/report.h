#pragma once

#include <string>

#include "demo/result/titration.h"

namespace titration {

/// The start of a line that continues the one before it.
inline constexpr const char* kIndent = "           ";

/// One fact per line: what was read, and the end point.
std::string ReadingText(const Titration& titration);
/// The formula with all values, those that it uses marked, its result, and whether the limits are kept.
std::string ResultText(const Settings& settings, const Result& result);
/// Both.
std::string Report(const Titration& titration);

// The same facts for other kinds of reports.

/// A column's name, or "column 2".
std::string ColumnText(const std::string& column);
/// The limits and whether they are kept; empty if there are none.
std::string LimitText(const Settings& settings, double value);

}  // namespace titration
