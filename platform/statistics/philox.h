#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace qel {

/// A stream of random numbers that is a function of its seed and its place: Philox4x32-10 (Salmon, Moraes, Dror, Shaw:
/// Parallel random numbers: as easy as 1, 2, 3; SC 2011), which enciphers a counter. Streams of different places are
/// independent, so any number of threads can share out the places and together draw the same numbers.
class Philox {
public:
    using Block = std::array<std::uint32_t, 4>;

    /// @param block, source the place; a stream has 2^33 numbers
    Philox(std::uint64_t seed, std::uint64_t block, std::uint32_t source);

    /// 64 random bits.
    std::uint64_t Next() {
        if (m_at == m_numbers.size()) Refill();
        return m_numbers[m_at++];
    }

    /// Between 0 and 1, and neither.
    double Uniform() { return (static_cast<double>(Next() >> 12) + 0.5) * 0x1p-52; }

    /// The block that a counter becomes, with the seed as key.
    static Block Enciphered(const Block& counter, std::uint64_t seed);

private:
    static constexpr std::size_t kLanes = 16;  // counters that are enciphered together, in vectors of the processor

    void Refill();

    std::uint64_t m_seed, m_block;
    std::uint32_t m_source, m_counter = 0;
    std::size_t m_at;
    std::array<std::uint64_t, 2 * kLanes> m_numbers;
};

}  // namespace qel
