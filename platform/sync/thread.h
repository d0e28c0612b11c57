#pragma once

#include "qellib10/platform/types.h"

namespace qel {

/// The system's number of the calling thread. No two living threads have the same; the number of an ended thread is
/// used again only after a long time.
DWORD CurrentThreadId();

/// The pthread_t of the calling thread.
unsigned long CurrentThreadHandle();

}  // namespace qel
