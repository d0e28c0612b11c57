#pragma once

#include <vector>

#include "checked_file.h"
#ifdef QEL_WITH_TRAIL
#include "verify_trails.h"
#endif

namespace tool {

/// What qel verify has found.
struct VerifyResults {
    std::vector<CheckedFile> files = {};
    std::size_t passed = 0;  ///< files of an interrupted run that were not read again
#ifdef QEL_WITH_TRAIL
    std::vector<VerifiedArchive> archives = {};
#endif
};

/// How it is written.
struct VerifyOutput {
    bool all = false;     ///< intact files of folders, too
    bool strict = false;  ///< a file of an unknown kind is a finding in folders, too
    bool json = false;
};

/// Writes findings, named files and the counts to the standard output.
void PrintVerified(const VerifyResults& results, const VerifyOutput& output);

}  // namespace tool
