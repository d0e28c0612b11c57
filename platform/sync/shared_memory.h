#pragma once

#include <cstddef>

#include "qellib10/platform/sync/handle.h"

// A block of memory that processes of one user share by name. It exists as long as any process has a handle to it, and
// its bytes as long as any process has a view. A block without handles can no longer be opened. Failures set LastError.
// Names are like those of mutexes; a block cannot have the name of a mutex.
namespace qel {

/// @return null when there is none of that name (2), the name is bad (3, 6, 87, 206) or belongs to a mutex (6)
HANDLE OpenSharedMemory(const char* name);

/// The block of that name with its existing size, or a new one of @p size bytes, all zero. The last error is 0 when it
/// is new and 183 when it existed. @return a null handle as above, for a new block of size 0 (87) and without memory
/// (8)
OpenedObject CreateSharedMemory(const char* name, DWORD size);

/// Maps the first @p size bytes, 0 for all. On success the last error does not change.
/// @return null when the block is smaller (5), and when another program has cut the block's file (1006)
void* MapView(HANDLE memory, bool isWritable, std::size_t size);

/// @return false if it is not a view of this process (487), or was already unmapped
bool UnmapView(const void* view);

}  // namespace qel
