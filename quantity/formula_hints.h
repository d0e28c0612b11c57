#pragma once

#include <cstddef>
#include <string_view>

namespace qel {

/// Where the first byte is that is not UTF-8; the length of @p text where all is.
std::size_t EndOfUtf8(std::string_view text);

/// Finds in an unknown name what looks like a sign or a blank of formulas, "＋" or "×", and and, or, not in another
/// case; people who wrote one do not see what is wrong with the name.
/// @param formula of which @p length bytes from @p position are the name
/// @throws FormulaError at the place of the sign or the word; returns where there is none
void RefuseLookAlikes(std::string_view formula, std::size_t position, std::size_t length);

}  // namespace qel
