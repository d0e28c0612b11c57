#pragma once

#include "qellib10/platform/sync/handle.h"

// A mutex that processes of one user know by a name. It lives as long as any process has a handle to it; which thread
// owns it is another matter. Failures set LastError.
namespace qel {

/// What a wait answers: owned; owned as well, after its owner died without releasing it; not owned; failed.
inline constexpr DWORD kWaitObject = 0, kWaitAbandoned = 0x80, kWaitTimeout = 0x102, kWaitFailed = 0xFFFFFFFF;
inline constexpr DWORD kInfinite = 0xFFFFFFFF;

/// @return null when there is none of that name (2), the name is bad (3, 6, 87, 206) or something else's (6)
HANDLE OpenNamedMutex(const char* name);

/// The mutex of that name, or a new one that nobody owns; always a new one without a name for "" and null. Last error 0
/// when it is new, 183 when it existed. @return a null handle as above, or when a resource is missing
OpenedObject CreateNamedMutex(const char* name);

/// Waits without using the processor. The owner may wait again, and has to release as often.
/// @param milliseconds 0 only looks, kInfinite has no end
DWORD WaitForMutex(HANDLE mutex, DWORD milliseconds);

/// @return false when the calling thread does not own it (288)
bool ReleaseNamedMutex(HANDLE mutex);

}  // namespace qel
