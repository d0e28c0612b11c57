#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

// The CRC of crc32_bzip2.h and the byte sum by carry-less multiplication and vector instructions, both from one load of
// each byte. The method is the folding of Gopal, Ozturk, Guilford et al., "Fast CRC Computation for Generic Polynomials
// Using PCLMULQDQ Instruction" (2009), in its form for a CRC that takes the most significant bit first.
namespace qel {

/// Running CRC register and sum; a form may compute only one of them.
struct RunningSums {
    std::uint32_t crc = 0;
    std::uint32_t sum = 0;
};

/// What this processor and system support.
bool HasCarrylessMultiply() noexcept;        // PCLMULQDQ with SSE 4.1
bool HasWideCarrylessMultiply() noexcept;    // VPCLMULQDQ with AVX2
bool HasWidestCarrylessMultiply() noexcept;  // VPCLMULQDQ with AVX-512, GFNI and VNNI

/// Each adds @p bytes, any number of them, to @p sums. The Crc forms do not change the sum.
void CrcByFolding(RunningSums& sums, std::span<const unsigned char> bytes) noexcept;
void CrcAndSumByFolding(RunningSums& sums, std::span<const unsigned char> bytes) noexcept;
void CrcByWideFolding(RunningSums& sums, std::span<const unsigned char> bytes) noexcept;
void CrcAndSumByWideFolding(RunningSums& sums, std::span<const unsigned char> bytes) noexcept;
void CrcByWidestFolding(RunningSums& sums, std::span<const unsigned char> bytes) noexcept;
void CrcAndSumByWidestFolding(RunningSums& sums, std::span<const unsigned char> bytes) noexcept;

/// Only the byte sum, modulo 2^32; needs AVX2.
std::uint32_t SumByVector(std::uint32_t sum, std::span<const unsigned char> bytes) noexcept;

}  // namespace qel
