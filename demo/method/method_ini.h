#pragma once

#include <string>

#include "demo/method/method.h"

namespace titration {

/// Reads a method from an INI file, in which names match without regard to case.
/// @throws Failure, with the file's name and the line, if the file cannot be read, if a section or key is unknown or
/// given twice, and if a name or value is not in UTF-8
Method ReadMethodIni(const std::string& path);

}  // namespace titration
