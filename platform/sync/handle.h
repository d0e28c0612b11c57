#pragma once

#include "qellib10/platform/types.h"

namespace qel {

/// A handle to an object that was created or already existed.
struct OpenedObject {
    HANDLE handle = nullptr;
    bool existed = false;
    bool wasLeftOwned = false;  // a mutex that is new, since everybody who had it died, one of them while it owned it
};

/// Closes a handle of a named object. @return false if it is not an open handle (6); the value of a closed one is never
/// used again
bool CloseHandle(HANDLE handle);

/// The number of the calling thread's last failure. A successful operation does not change it unless it says so, so the
/// number means nothing after a success.
DWORD LastError();
void SetLastError(DWORD code);

}  // namespace qel
