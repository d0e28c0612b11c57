#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace titration {

/// A number as instruments write it: sign, digits with a point or a comma as the decimal sign, exponent; blanks
/// around it. Whatever else stands in the text, and what no double can hold, makes it no number.
std::optional<double> ParseNumber(std::string_view text);

/// A whole number without sign.
std::optional<int> ParseWholeNumber(std::string_view text);

/// "1 version", "2 versions"
std::string Counted(long long count, const std::string& what);

}  // namespace titration
