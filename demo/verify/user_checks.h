#pragma once

#include <string>
#include <vector>

#include <qellib10/qellib10.h>

#include "demo/result/made_files.h"

namespace titration {

/// The user store is intact and as the last run left it, and everybody who registered a version is one of its users.
/// @return what was found
/// @throws Failure
std::string CheckUsers(const MadeFiles& made, const std::vector<CHistoryRenewInfo>& records);

}  // namespace titration
