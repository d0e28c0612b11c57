#pragma once

#include <cstddef>
#include <span>

namespace qel {

inline constexpr std::size_t kNotFound = static_cast<std::size_t>(-1);

/// Where @p wanted, of at least one byte, begins first in @p bytes, or kNotFound. Takes time in proportion to their
/// length, whatever they hold.
std::size_t FindBytes(std::span<const std::byte> bytes, std::span<const std::byte> wanted) noexcept;

}  // namespace qel
