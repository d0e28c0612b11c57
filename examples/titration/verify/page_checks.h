#pragma once

#include <optional>
#include <string>

#include "../made_files.h"

namespace titration {

// Each gives what it found, and throws Failure when something is wrong.

/// A job file can be printed, with others like it on a page, and is of this version.
/// @param headline with the result, if it is known
std::string CheckJob(const MadeFiles& made, DWORD version, const std::optional<std::string>& headline);
/// A PNG file is whole.
std::string CheckPicture(const MadeFiles& made, const std::string& name);
/// A PDF file is whole.
std::string CheckPdf(const MadeFiles& made, const std::string& name);

}  // namespace titration
