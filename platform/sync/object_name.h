#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "qellib10/platform/types.h"

namespace qel {

/// The longest name of an object, in bytes.
inline constexpr std::size_t kLongestObjectName = MAX_PATH;

/// The name that an object goes by: "Local\x" is "x", "Global\x" a name of its own; the case of both words, and of all
/// others, counts. A slash is a letter like any other.
/// @throws SystemFailure for a name that is too long (206), holds a further backslash (3) or has nothing behind its
/// first word (6)
std::string_view ObjectName(std::string_view name);

/// The file that stands for the object of that name, in the folder of all of them; a name of letters, digits and
/// "-_%~".
std::string ObjectFileName(std::string_view objectName);

}  // namespace qel
