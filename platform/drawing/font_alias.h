#pragma once

#include <string>

namespace qel {

/// The families to look for, separated by commas, for a face that an application asks for (UTF-8; both may be empty):
/// the faces of the framework's own systems have metrically equal or alike ones here, Japanese ones under both of their
/// names. Other faces are taken as they are. A Japanese family always stands at the end.
std::string FontFamilies(const std::string& face);

}  // namespace qel
