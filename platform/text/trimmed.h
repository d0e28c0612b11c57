#pragma once

#include <algorithm>
#include <string_view>

namespace qel {

/// @p text without the characters of @p blanks at both ends. It points into @p text.
inline std::string_view Trimmed(std::string_view text, std::string_view blanks = " \t") {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

}  // namespace qel
