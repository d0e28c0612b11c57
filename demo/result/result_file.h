#pragma once

#include <string>

#include <qellib10/qellib10.h>

#include "demo/result/check_sums.h"

namespace titration {

/// Writes @p list to @p path as an archive and seals the file. If it replaces a sealed file, it keeps that file's
/// identity, with the next version.
/// @throws Failure if the system refuses
/// @return the seal
CCheckDatafile StoreVariables(const CCalcVariableList& list, const std::string& path);

/// Reads them back, from a file of that name or one that was renamed.
/// @throws Failure if the file cannot be read, and if its seal does not pass
CCalcVariableList LoadVariables(const std::string& path);
CCalcVariableList LoadRenamedVariables(const std::string& path);

/// The checksums in the seal of a file, for everything before them.
/// @throws Failure if the file cannot be read
CheckSums SealedSums(const std::string& path);
/// Changes one bit of byte @p position in a copy of a sealed file, in the folder for temporary files.
/// @throws Failure unless the seal passes before and does not afterwards
/// @return what the seal of the copy would need
CheckSums RequireChangeToBeFound(const std::string& path, ULONGLONG position);

}  // namespace titration
