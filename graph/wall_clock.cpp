#include "qellib10/graph/wall_clock.h"

#include <algorithm>
#include <ctime>

namespace qel {
namespace {

constexpr std::int64_t kDay = 86400;

std::tm LocalFields(std::int64_t time) {
    const std::time_t seconds = time;
    std::tm fields{};
    return localtime_r(&seconds, &fields) != nullptr ? fields : std::tm{};
}

}  // namespace

std::int64_t WallClock::Offset(std::int64_t time) const { return m_isLocal ? LocalFields(time).tm_gmtoff : 0; }

std::string WallClock::ZoneName(std::int64_t time) const {
    const char* const name = m_isLocal ? LocalFields(time).tm_zone : "UTC";
    if (name == nullptr) return {};
    return *name == '+' || *name == '-' ? std::string("UTC") + name : name;
}

std::vector<WallClock::Span> WallClock::Spans(std::int64_t begin, std::int64_t end) const {
    std::vector<Span> spans{{begin, begin, Offset(begin)}};
    while (spans.back().end < end) {
        Span& last = spans.back();
        const std::int64_t next = std::min(last.end + kDay, end);
        if (Offset(next) == last.offset) {
            last.end = next;
            continue;
        }
        const std::int64_t change = FirstAfterChange(last.end, next);
        last.end = change;
        if (change < end) spans.push_back({change, change, Offset(change)});
    }
    return spans;
}

std::optional<std::int64_t> WallClock::FirstSecond(std::chrono::sys_days day) const {
    const std::int64_t wall = day.time_since_epoch().count() * kDay;
    const std::int64_t before = Offset(wall - kDay), after = Offset(wall + kDay);
    for (const std::int64_t offset : {before, after})
        if (Offset(wall - offset) == offset) return wall - offset;
    // Midnight was skipped: the day starts with the change.
    const std::int64_t change = FirstAfterChange(wall - kDay, wall + kDay);
    return change + Offset(change) < wall + kDay ? std::optional(change) : std::nullopt;
}

std::int64_t WallClock::FirstAfterChange(std::int64_t before, std::int64_t after) const {
    const std::int64_t offset = Offset(before);
    while (after - before > 1) {
        const std::int64_t middle = before + (after - before) / 2;
        (Offset(middle) == offset ? before : after) = middle;
    }
    return after;
}

}  // namespace qel
