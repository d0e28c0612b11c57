#pragma once

#include <cstdint>
#include <string>

namespace qel {

/// The time of an entry by two clocks: one that people set, and one that runs since the system was started.
struct TrailMoment {
    std::int64_t time = 0;       // ms since 1970, UTC
    std::uint64_t bootTime = 0;  // ms
    std::string bootId;
};

/// @throws DataError when the system does not say
TrailMoment SystemMoment();
std::string SystemHost();

}  // namespace qel
