#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <concepts>
#include <cstddef>
#include <span>
#include <type_traits>

namespace qel {

/// Numbers for which every bit pattern is a valid value; bool is not one of them.
template <class T>
concept PackableNumber = std::is_arithmetic_v<T> && !std::same_as<T, bool>;

/// The bytes of a number, lowest first, as in all our file formats.
template <PackableNumber T> constexpr std::array<std::byte, sizeof(T)> ToLittleEndian(T value) {
    auto bytes = std::bit_cast<std::array<std::byte, sizeof(T)>>(value);
    if constexpr (std::endian::native == std::endian::big) std::ranges::reverse(bytes);
    return bytes;
}

/// The number stored in these bytes, lowest first.
template <PackableNumber T> constexpr T FromLittleEndian(std::span<const std::byte, sizeof(T)> bytes) {
    std::array<std::byte, sizeof(T)> copy;
    std::ranges::copy(bytes, copy.begin());
    if constexpr (std::endian::native == std::endian::big) std::ranges::reverse(copy);
    return std::bit_cast<T>(copy);
}

/// Writes a number into @p bytes at @p offset, where it must fit.
template <PackableNumber T> constexpr void PutNumber(std::span<std::byte> bytes, std::size_t offset, T value) {
    std::ranges::copy(ToLittleEndian(value), bytes.subspan(offset, sizeof(T)).begin());
}
template <PackableNumber T> constexpr T GetNumber(std::span<const std::byte> bytes, std::size_t offset) {
    return FromLittleEndian<T>(std::span<const std::byte, sizeof(T)>(bytes.subspan(offset, sizeof(T))));
}

}  // namespace qel
