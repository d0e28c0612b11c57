#pragma once

#include "qellib10/platform/types.h"

namespace qel {

/// The system's number of the calling thread. No two living threads share one; an ended thread's number comes back
/// after long.
DWORD CurrentThreadId();

/// The pthread_t of the calling thread.
unsigned long CurrentThreadHandle();

}  // namespace qel
