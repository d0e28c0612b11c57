#pragma once

#include <cstddef>

#include "qellib10/platform/sync/handle.h"

// A block of memory that processes of one user know by a name. It lives as long as any process has a handle to it, and
// its bytes as long as any has a view; a block that nobody has a handle to any more is found by nobody. Failures set
// LastError. Names are as for mutexes, among which no block may have its own.
namespace qel {

/// @return null when there is none of that name (2), the name is bad (3, 6, 87, 206) or a mutex's (6)
HANDLE OpenSharedMemory(const char* name);

/// The block of that name with the size that it has, or a new one of @p size bytes, all zero. Last error 0 when it is
/// new, 183 when it existed. @return a null handle as above, for a new block of size 0 (87) and without memory (8)
OpenedObject CreateSharedMemory(const char* name, DWORD size);

/// Maps the first @p size bytes, 0 for all. Success leaves the last error alone.
/// @return null for more than the block has (5), and when another program has cut the block's file (1006)
void* MapView(HANDLE memory, bool isWritable, std::size_t size);

/// @return false for what is no view of this process (487), one that was unmapped included
bool UnmapView(const void* view);

}  // namespace qel
