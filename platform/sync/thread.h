#pragma once

#include "qellib10/platform/types.h"

namespace qel {

/// The system's number of the calling thread. No two living threads share one; an ended thread's number comes back
/// after long.
DWORD CurrentThreadId();

/// Has @p before called ahead of every fork of this process, and behind it one of the others in each process: what they
/// lock is then free in the child, and its other threads' halves of work are not there. For state that never goes.
void AtFork(void (*before)(), void (*inParent)(), void (*inChild)());

}  // namespace qel
