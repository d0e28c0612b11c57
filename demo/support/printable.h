#pragma once

#include <string>
#include <string_view>

namespace titration {

/// @p text for a terminal: a question mark for each byte of a control character, and for each that is not UTF-8. Text
/// from a damaged file, enciphered or not, could otherwise control the terminal.
std::string Printable(std::string_view text);

/// Whether all of @p text is UTF-8.
bool IsUtf8(std::string_view text);

}  // namespace titration
