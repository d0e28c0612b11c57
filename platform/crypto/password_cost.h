#pragma once

#include <cstdint>

namespace qel {

/// What checking one password costs, and so each guess: passes over so many bytes of memory. The default takes about a
/// tenth of a second.
struct PasswordCost {
    std::uint64_t passes = 2;         ///< 1 to 16
    std::uint64_t memory = 64 << 20;  ///< bytes, 8 KiB to 1 GiB

    bool operator==(const PasswordCost&) const = default;
};

}  // namespace qel
