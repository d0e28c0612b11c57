#pragma once

#include <cstddef>
#include <cstdint>

#include "qellib10/file/crc32_bzip2.h"

namespace qel {

/// x^power modulo the CRC's polynomial.
constexpr std::uint32_t PowerModulo(std::size_t power) {
    std::uint32_t rest = 1;
    for (std::size_t i = 0; i < power; ++i) rest = (rest << 1) ^ ((rest >> 31) * kCrcPolynomial);
    return rest;
}

/// The factors that move a 128-bit lane on by @p lanes lanes without changing its remainder: its 64 bits of lower
/// powers are multiplied by x^n, those of higher powers by x^(n + 64); n is the distance in bits.
struct FoldDistance {
    std::uint64_t lower, upper;
    explicit constexpr FoldDistance(std::size_t lanes)
        : lower(PowerModulo(lanes * 128)), upper(PowerModulo(lanes * 128 + 64)) {}
};

/// The same for lanes whose bit 0 is the highest power. A product of two such halves is one power too high, so the
/// factors are one power lower; their highest power is also bit 0 of 64.
struct ReflectedFoldDistance {
    std::uint64_t lower, upper;
    explicit constexpr ReflectedFoldDistance(std::size_t lanes)
        : lower(Reflected(PowerModulo(lanes * 128 - 1))), upper(Reflected(PowerModulo(lanes * 128 + 63))) {}

private:
    static constexpr std::uint64_t Reflected(std::uint32_t polynomial) {
        std::uint64_t result = 0;
        for (int power = 0; power < 32; ++power) {
            result |= std::uint64_t{(polynomial >> power) & 1} << (63 - power);
        }
        return result;
    }
};

}  // namespace qel
