#pragma once

#include <cstdint>
#include <span>

#include "qellib10/platform/export.h"

namespace qel {

/// The checksums of sealed files and cabinets, over bytes that come in pieces: CRC-32/BZIP2, and the sum of all bytes
/// as a 32-bit number, in which 0 is stored as 1 so that no stored sum is ever 0.
///
/// Computed by the fastest form that the processor has; all forms give the same result.
class QELLIB10_API CheckSums {
public:
    enum Wanted { kBoth, kCrc, kSum };
    /// What is not wanted is not computed, and must not be read.
    explicit CheckSums(Wanted wanted = kBoth) noexcept : m_wanted(wanted) {}

    void Add(std::span<const unsigned char> bytes) noexcept;

    std::uint32_t Crc() const noexcept { return ~m_crc; }
    std::uint32_t Sum() const noexcept { return m_sum != 0 ? m_sum : 1; }

private:
    Wanted m_wanted;
    std::uint32_t m_crc = 0xFFFFFFFF;
    std::uint32_t m_sum = 0;
};

}  // namespace qel
