#pragma once

#include <string>

#include "method.h"

namespace titration {

/// Reads a method from an INI file, in which names match without regard to case and of two sections with one name the
/// first counts.
/// @throws Failure when there is no such file, when a key is unknown or given twice, and when a name or value is not in
/// UTF-8
Method ReadMethodIni(const std::string& path);

}  // namespace titration
