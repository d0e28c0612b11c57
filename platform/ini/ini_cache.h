#pragma once

#include <memory>
#include <string>

#include "qellib10/platform/ini/ini_index.h"

namespace qel {

/// The INI file at @p posixPath as it is now; an empty one when there is no file, null when there is one that cannot be
/// read. The files asked for last are kept, for all threads, and read again only when they have changed, whoever did
/// that.
std::shared_ptr<const IniIndex> ReadIni(const std::string& posixPath);

}  // namespace qel
