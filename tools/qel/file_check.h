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
    std::string guid = {};  ///< of an intact seal, as its version; only where the file was read now
    std::uint64_t sealVersion = 0;

    /// Something else that was found about it: the higher status is that of the file.
    void Raise(Status other, const char* otherDetail) {
        if (IsFinding(finding) && other <= finding) return;
        finding = other;
        detail = otherDetail;
    }
};

/// Checks a file without changing it. Others cannot write to it meanwhile; a file that is being written is unreadable.
FileReport CheckFile(const std::string& path);

/// Whether it is a job or a PDF, or has the name of one: other programs go by that.
bool IsReport(const FileReport& report, const std::string& path);

/// Whether a file ends with a seal, intact or not, also while others write to it. @throws Failure
bool HasTraceOfSeal(const std::string& path);

/// For files that will be changed. @throws Failure if it has a seal, intact or not, which would be lost
void RequireUnsealed(const std::string& path);

}  // namespace tool
