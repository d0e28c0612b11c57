#pragma once

#include <cstddef>

#include "qellib10/platform/export.h"

namespace qel {

/// Memory for arrays of many megabytes that are read at places far from each other. Where the system allows it, it is
/// in pages of 2 MiB: then finding a place does not take longer than reading it. Memory that is not written is not
/// used.
/// @throws std::bad_alloc
QELLIB10_INTERNAL_API void* AllocateLarge(std::size_t bytes);

/// @param memory from AllocateLarge, or null
QELLIB10_INTERNAL_API void FreeLarge(void* memory) noexcept;

}  // namespace qel
