#pragma once

#include <string>

#include <qellib10/qellib10.h>

namespace titration {

/// Writes @p list to @p path as an archive, in place of a file that is there.
/// @throws Failure when the system refuses
void StoreVariables(const CCalcVariableList& list, const std::string& path);

/// @throws Failure when the file cannot be read or ends too early
CCalcVariableList LoadVariables(const std::string& path);

}  // namespace titration
