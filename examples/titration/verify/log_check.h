#pragma once

#include <optional>
#include <string>
#include <vector>

#include <qellib10/qellib10.h>

namespace titration {

struct LogFacts {
    std::string text;
    std::vector<std::string> printed;  // names of files
};

/// Lines are whole and in the order of their times, and each version was registered after its method, its curve and its
/// result, one version after the other up to the latest.
/// @param result that of the latest version, if it is known
/// @throws Failure
LogFacts CheckLog(const std::string& path, DWORD versions, const std::optional<std::string>& result);

}  // namespace titration
