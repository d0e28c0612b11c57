#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tool.h"

namespace tool {

/// One thing that the installed library has to do right on this machine.
struct SelfCheck {
    const char* name;
    const char* expected;
    std::function<std::string()> run;  ///< what was found; may throw Failure
};

/// All of them, those of the components quantity and record at the end where they are installed. Each has files of its
/// own below
/// @p folder, and some of the later ones use those of the earlier ones.
/// @param folder must exist, in the system's form
std::vector<SelfCheck> SelfChecks(const std::string& folder);

#ifdef QEL_WITH_QUANTITY
void AddTraceCheck(std::vector<SelfCheck>& checks);
#endif
#ifdef QEL_WITH_TRAIL
void AddTrailChecks(std::vector<SelfCheck>& checks, const std::string& folder);
#endif

}  // namespace tool
