#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include <qellib10/qellib10.h>

#include "demo/result/made_files.h"

namespace titration {

/// What the log tells of a version.
struct LoggedRun {
    std::string method, curve;  // names of the files that it was computed from
    std::string result;
    int table = 0;  // of the curve's file, 0: the only one
};

/// The latest reports that there were at a time.
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
    std::string printedLast;                       // the file with what was previewed; the empty text: none
};

/// Lines are whole and in the order of their times, and each version was registered after its method, its curve and its
/// result, one version after the other up to the latest. Those that there were at the end of the last run are
/// unchanged.
/// @param facts those of the lines before the first one that is wrong
/// @throws Failure
std::string CheckLog(const MadeFiles& made, DWORD versions, LogFacts& facts);

}  // namespace titration
