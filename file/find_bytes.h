#pragma once

#include <cstddef>
#include <span>

namespace qel {

inline constexpr std::size_t kNotFound = static_cast<std::size_t>(-1);

/// The first position of @p wanted, at least one byte long, in @p bytes, or kNotFound. Takes time in proportion to
/// their length, whatever they contain.
std::size_t FindBytes(std::span<const std::byte> bytes, std::span<const std::byte> wanted) noexcept;

}  // namespace qel
