#pragma once

#include <string>
#include <string_view>

namespace titration {

/// @p text for a terminal: a question mark for each byte of a control character, and for each that is no UTF-8. What
/// is read from a damaged file, enciphered or not, could otherwise command the terminal.
std::string Printable(std::string_view text);

/// Whether all of @p text is UTF-8.
bool IsUtf8(std::string_view text);

}  // namespace titration
