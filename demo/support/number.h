#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace titration {

/// A whole number without sign.
std::optional<int> ParseWholeNumber(std::string_view text);

/// "1 version", "2 versions"
std::string Counted(long long count, const std::string& what);

}  // namespace titration
