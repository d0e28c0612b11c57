#pragma once

#include <string>

#include <qellib10/qellib10.h>

namespace titration {

/// When, by whom and why.
std::string Described(const CHistoryRenewInfo& record);

}  // namespace titration
