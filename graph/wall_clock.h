#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "qellib10/graph/axis_ticks.h"

namespace qel {

/// What clocks on the wall show: seconds that are counted as if each local day had 24 hours. Summer time skips some of
/// them and repeats others.
class WallClock {
public:
    explicit WallClock(ChartClock clock) : m_isLocal(clock == ChartClock::kLocal) {}

    /// Seconds that clocks are ahead of UTC at @p time, seconds since 1970.
    std::int64_t Offset(std::int64_t time) const;
    /// "UTC", "CET", "UTC+03".
    std::string ZoneName(std::int64_t time) const;

    /// From @p begin to before @p end, clocks are ahead of UTC by @p offset.
    struct Span {
        std::int64_t begin, end, offset;
    };
    /// A range in spans without a change. A day is looked at as a whole: two changes within one are not seen.
    std::vector<Span> Spans(std::int64_t begin, std::int64_t end) const;

    /// The first second of a day; none if the zone has skipped the day.
    std::optional<std::int64_t> FirstSecond(std::chrono::sys_days day) const;

private:
    std::int64_t FirstAfterChange(std::int64_t before, std::int64_t after) const;

    bool m_isLocal;
};

}  // namespace qel
