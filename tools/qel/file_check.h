#pragma once

#include <string>

#include "tool.h"

namespace tool {

/// The findings about a file.
struct FileReport {
    std::string kind;  ///< see KindOf; empty if it could not be determined
    bool isSealed = false;
    Status finding = kGood;
    std::string detail;
};

/// Checks a file without changing it. Others cannot write to it meanwhile; a file that is being written is unreadable.
FileReport CheckFile(const std::string& path);

/// Whether a file ends with a seal, intact or not, also while others write to it. @throws Failure
bool HasTraceOfSeal(const std::string& path);

/// For files that will be changed. @throws Failure if it has a seal, intact or not, which would be lost
void RequireUnsealed(const std::string& path);

}  // namespace tool
