#pragma once

#include "qellib10/platform/sync/handle.h"

// A mutex that processes of one user share by name. It exists as long as any process has a handle to it, no matter
// which thread owns it. Failures set LastError.
namespace qel {

/// What a wait returns: owned; owned, but its former owner died without releasing it; not owned; failed.
inline constexpr DWORD kWaitObject = 0, kWaitAbandoned = 0x80, kWaitTimeout = 0x102, kWaitFailed = 0xFFFFFFFF;
inline constexpr DWORD kInfinite = 0xFFFFFFFF;

/// @return null when there is none of that name (2), the name is bad (3, 6, 87, 206) or belongs to something else (6)
HANDLE OpenNamedMutex(const char* name);

/// The mutex of that name, or a new one that nobody owns; for "" and null always a new one without a name. The last
/// error is 0 when it is new and 183 when it existed. @return a null handle as above, or when a resource is missing
OpenedObject CreateNamedMutex(const char* name);

/// Waits without using the processor. The owner may wait again, and must release it as many times.
/// @param milliseconds 0 only tests, kInfinite waits without limit
DWORD WaitForMutex(HANDLE mutex, DWORD milliseconds);

/// @return false when the calling thread does not own it (288)
bool ReleaseNamedMutex(HANDLE mutex);

}  // namespace qel
