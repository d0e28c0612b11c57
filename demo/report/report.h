#pragma once

#include <string>

#include "demo/result/titration.h"

namespace titration {

/// What a line begins with that goes on with the one before it.
inline constexpr const char* kIndent = "           ";

/// One fact a line: what was read, and the end point.
std::string ReadingText(const Titration& titration);
/// The formula with all values and a mark at those that it uses, what it gives, and whether the limits are kept.
std::string ResultText(const Settings& settings, const Result& result);
/// Both.
std::string Report(const Titration& titration);

// The same facts for other reports.

/// A column's name, or "column 2".
std::string ColumnText(const std::string& column);
/// The limits and whether they are kept; empty when there are none.
std::string LimitText(const Settings& settings, double value);

}  // namespace titration
