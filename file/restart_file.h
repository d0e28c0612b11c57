#pragma once

#include "qellib10/platform/text/string.h"

// The restart file: where systems of the older family look, at their next start, for what is to be moved and deleted.
// An INI file in the Windows folder:
//
//     [rename]
//     C:\NEW.DLL=C:\4F21.TMP      move what stands on the right to the left, replacing it
//     Nul=C:\OLD.DLL              delete
//
// Moves and deletions spell file and section in different ways, which these systems take as the same: WININIT.INI with
// [rename], WinInit.ini with [Rename].
namespace qel {

/// @return false when the file cannot be written, or @p target has an equals sign in its name
bool AddMoveToRestartFile(const CString& source, const CString& target);
bool AddDeletionToRestartFile(const CString& name);

}  // namespace qel
