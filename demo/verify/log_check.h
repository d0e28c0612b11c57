#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include <qellib10/qellib10.h>

#include "demo/result/made_files.h"

namespace titration {

/// What the log says about a version.
struct LoggedRun {
    std::string method, curve;  // names of the files that it was computed from
    std::string result;
    int table = 0;  // of the curve's file, 0: the only one
};

/// The latest reports at a certain time.
struct LoggedReports {
    DWORD first = 0, last = 0;

    std::string Described() const;
};

struct LogFacts {
    int lines = 0;
    std::vector<LoggedRun> runs;                   // of version 1, 2, ...
    std::set<std::string> takenOut;                // files
    LoggedReports previewed;                       // 0: none
    std::map<std::string, LoggedReports> printed;  // into files
    std::set<DWORD> signedReports;                 // on these versions
    std::string printedLast;                       // the file with what was previewed; empty: none
};

/// Lines are complete and in the order of their times, and each version was registered after its method, its curve and
/// its result, one version after the other up to the latest. The lines that existed at the end of the last run have not
/// changed.
/// @param facts those of the lines before the first wrong one
/// @throws Failure
std::string CheckLog(const MadeFiles& made, DWORD versions, LogFacts& facts);

}  // namespace titration
