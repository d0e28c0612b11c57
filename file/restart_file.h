#pragma once

#include "qellib10/platform/text/string.h"

// The restart file: systems of the older family read it at their next start to move and delete files. An INI file in
// the Windows folder:
//
//     [rename]
//     C:\NEW.DLL=C:\4F21.TMP      move the file on the right to the left, replacing it
//     Nul=C:\OLD.DLL              delete
//
// Moves and deletions spell file and section in different ways, which these systems treat as the same: WININIT.INI with
// [rename], WinInit.ini with [Rename].
namespace qel {

/// @return false if the file cannot be written, or @p target has an equals sign in its name
bool AddMoveToRestartFile(const CString& source, const CString& target);
bool AddDeletionToRestartFile(const CString& name);

}  // namespace qel
