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

/// For what is to be changed. @throws Failure when it has a seal, intact or not, which would be lost
void RequireUnsealed(const std::string& path);

}  // namespace tool
