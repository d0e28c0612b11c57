#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/export.h"

// Text from files and command lines, whose bytes may be anything, in messages and on terminals.
namespace qel {

/// @p utf8 for a terminal or a line of a log: one `?` for each byte of a control character and for each that is not
/// UTF-8, so the length in bytes stays. Text from a damaged file could otherwise move the cursor, end a line or send
/// the terminal a command. Control characters are U+0000 to U+001F, line ends and tabs too, and U+007F to U+009F; and
/// those that end a line or show text in another order than it is written: U+061C, U+200E, U+200F, U+2028 to U+202E and
/// U+2066 to U+2069.
QELLIB10_API std::string PrintableText(std::string_view utf8);

/// Whether all of @p text is UTF-8: no surrogate, no form that is longer than needed, nothing above U+10FFFF.
QELLIB10_API bool IsUtf8(std::string_view text);

}  // namespace qel
