#pragma once

#include <string>

#include "content_check.h"
#include "tool.h"

namespace tool {

/// The findings about a file.
struct FileReport {
    std::string kind;  ///< see KindOf; empty if it could not be determined
    bool isSealed = false;
    Status finding = kGood;
    std::string detail;
    // Only where the file was read now; of an intact seal:
    std::string guid = {};
    std::uint64_t sealVersion = 0;
    std::string sealedAs = {};                 ///< the name, in UTF-8
    std::optional<ULONGLONG> size = {};        ///< of the whole file; nothing: it could not be opened
    std::vector<DamagedVersion> damaged = {};  ///< of a cabinet; see ContentReport

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
