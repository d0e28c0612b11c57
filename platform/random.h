#pragma once

#include <cstddef>
#include <span>

#include "qellib10/platform/export.h"

namespace qel {

/// Fills at most 256 bytes from the system's random source, which is seeded and fit for secrets.
/// @return false when the system gives none
bool FillRandom(std::span<std::byte> bytes) noexcept;

/// A number with which a search for something free begins, so that processes do not get in each other's way. Not fit
/// for secrets: before the source is seeded it is the process's own.
QELLIB10_INTERNAL_API unsigned RandomNumber() noexcept;

}  // namespace qel
