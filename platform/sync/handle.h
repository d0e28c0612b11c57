#pragma once

#include "qellib10/platform/types.h"

namespace qel {

/// A handle to an object that was made, or existed before.
struct OpenedObject {
    HANDLE handle = nullptr;
    bool existed = false;
};

/// Closes a handle of a named object. @return false for what is no open handle (6): one that was closed never comes
/// back
bool CloseHandle(HANDLE handle);

/// The number of the calling thread's last failure. An operation that succeeds leaves it as it was unless it says
/// otherwise, so it tells nothing after a success.
DWORD LastError();
void SetLastError(DWORD code);

}  // namespace qel
