#pragma once

#include <string>

#include "tool.h"

namespace tool {

/// What was found in a file.
struct FileReport {
    std::string kind;  ///< see KindOf; empty when it could not be asked
    bool isSealed = false;
    Status finding = kGood;
    std::string detail;
};

/// Looks at a file without changing it. Others cannot write to it meanwhile; one that is being written is unreadable.
FileReport CheckFile(const std::string& path);

}  // namespace tool
