#pragma once

#include <string>

#include "../calculation.h"
#include "../made_files.h"
#include "../settings.h"

namespace titration {

// Each gives what it found, and throws Failure when something is wrong.

std::string CheckMethod(const MadeFiles& made);
std::string CheckVariables(const MadeFiles& made);

struct Recomputed {
    Settings settings;
    Result result;
};

/// The latest result, from the method and the variables that were kept.
/// @throws Failure when it is not the one that was kept with the variables
Recomputed Recompute(const MadeFiles& made);

std::string CheckTable(const MadeFiles& made, const Recomputed& recomputed);
std::string CheckReport(const MadeFiles& made, const Recomputed& recomputed);

}  // namespace titration
