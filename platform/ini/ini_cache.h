#pragma once

#include <memory>
#include <string>

#include "qellib10/platform/ini/ini_index.h"

namespace qel {

/// The current content of the INI file at @p posixPath; empty if there is no file, null if it cannot be read. The most
/// recent files are cached for all threads, and read again only if somebody has changed them.
std::shared_ptr<const IniIndex> ReadIni(const std::string& posixPath);

}  // namespace qel
