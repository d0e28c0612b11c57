#pragma once

#include <string>

#include "file_check.h"

namespace tool {

/// A file of qel verify with what was found.
struct CheckedFile {
    std::string path;
    bool isNamed = false;  ///< by the user, not found in a folder
    FileReport report;
    std::string name = {};  ///< from the folder on that the user named
};

/// What is in JSON about it.
Json FileJson(const CheckedFile& file);

}  // namespace tool
