#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "qellib10/platform/ini/ini_index.h"

namespace qel {

/// The current content of the INI file at @p posixPath, null if there is no file. The most recent files are cached for
/// all threads, and read again only if somebody has changed them.
/// @param name the path as the caller knows it
/// @throws CFileException if it cannot be read, DataError if it is not an ordinary file, or larger than
/// IniIndex::kLargestFile
std::shared_ptr<const IniIndex> ReadIni(const std::string& posixPath, std::string_view name);

}  // namespace qel
