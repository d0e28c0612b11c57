#pragma once

#include <cstdint>
#include <span>

// CRC-32/BZIP2: polynomial 04C11DB7, most significant bit first, initial value and final XOR FFFFFFFF; 123456789 gives
// FC891918. The functions work on the running register: start with kCrcStart, end with FinishedCrc. All give the same
// result.
namespace qel {

inline constexpr std::uint32_t kCrcPolynomial = 0x04C11DB7;
inline constexpr std::uint32_t kCrcStart = 0xFFFFFFFF;

constexpr std::uint32_t FinishedCrc(std::uint32_t crc) { return ~crc; }

/// The plain form, one byte at a time, with one table.
std::uint32_t CrcByByte(std::uint32_t crc, std::span<const unsigned char> bytes) noexcept;

/// 16 bytes at a time, with 16 tables: the form for every processor.
std::uint32_t CrcBySlices(std::uint32_t crc, std::span<const unsigned char> bytes) noexcept;

}  // namespace qel
