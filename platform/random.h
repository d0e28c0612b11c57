#pragma once

#include <cstddef>
#include <span>

#include "qellib10/platform/export.h"

namespace qel {

/// Fills at most 256 bytes from the system's random source, which is seeded and good enough for secrets.
/// @return false when the system provides none
QELLIB10_INTERNAL_API bool FillRandom(std::span<std::byte> bytes) noexcept;

/// A start number for a search for something free, so that processes do not get in each other's way. Not for secrets:
/// before the source is seeded it is derived from the process.
QELLIB10_INTERNAL_API unsigned RandomNumber() noexcept;

}  // namespace qel
