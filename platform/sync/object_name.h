#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "qellib10/platform/types.h"

namespace qel {

/// The longest name of an object, in bytes.
inline constexpr std::size_t kLongestObjectName = MAX_PATH;

/// The name of an object: "Local\x" is "x", "Global\x" is a different name. Case matters, in these two words and in all
/// others. A slash is an ordinary character.
/// @throws SystemFailure for a name that is too long (206), contains a further backslash (3) or has nothing after its
/// first word (6)
std::string_view ObjectName(std::string_view name);

/// The file of the object of that name in the folder of all objects. It consists of letters, digits and "-_%~".
std::string ObjectFileName(std::string_view objectName);

}  // namespace qel
