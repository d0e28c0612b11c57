#pragma once

#include <string>

namespace qel {

/// The font families to look for, separated by commas, when an application asks for a face (UTF-8; both may be empty).
/// For faces of the framework's own systems they are metrically equal or similar fonts, for Japanese ones under both of
/// their names. Other faces are used as they are. A Japanese family is always last.
std::string FontFamilies(const std::string& face);

}  // namespace qel
