#pragma once

#include <cstddef>
#include <span>

namespace qel {

/// Fills at most 256 bytes from the system's random source, which is seeded and fit for secrets.
/// @return false when the system gives none
bool FillRandom(std::span<std::byte> bytes) noexcept;

}  // namespace qel
