#pragma once

#include <string>

#include <qellib10/qellib10.h>

#include "demo/result/check_sums.h"

namespace titration {

/// Writes @p list to @p path as an archive and seals the file. In place of a sealed file that is there it keeps that
/// one's identity, with the next version.
/// @throws Failure when the system refuses
/// @return the seal
CCheckDatafile StoreVariables(const CCalcVariableList& list, const std::string& path);

/// Reads them back, from a file of that name or one that was renamed.
/// @throws Failure when the file cannot be read, and when its seal does not fit
CCalcVariableList LoadVariables(const std::string& path);
CCalcVariableList LoadRenamedVariables(const std::string& path);

/// Those that the seal of a file holds, for all that is before them.
/// @throws Failure when the file cannot be read
CheckSums SealedSums(const std::string& path);
/// Changes one bit of byte @p position in a copy of a sealed file, in the folder for temporary files.
/// @throws Failure unless the seal fits before and does not afterwards
/// @return what the seal would have to hold for the copy
CheckSums RequireChangeToBeFound(const std::string& path, ULONGLONG position);

}  // namespace titration
