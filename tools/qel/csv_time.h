#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace tool {

/// Reads times of ISO 8601 in its extended form: "2026-11-28", "2026-11-28T10:15", "2026-11-28 10:15:30.25Z",
/// "2026-11-28T10:15:30+01:00", "...+01". A comma is a decimal sign too.
class TimeReader {
public:
    /// @param isUtc times without a zone are UTC, else local time
    explicit TimeReader(bool isUtc) : m_isUtc(isUtc) {}

    /// Seconds since 1970-01-01 00:00 UTC. Of a local time that the end of summer time repeats, the first one that
    /// continues the times read before, forward or backward, is taken.
    /// @return nothing for another text, and for a day or a time that does not exist, such as February 30 or a local
    /// time that summer time skips
    std::optional<double> Read(std::string_view text);
    std::size_t Skipped() const noexcept { return m_skipped; }    ///< local times that do not exist
    std::size_t Repeated() const noexcept { return m_repeated; }  ///< local times that exist twice
    /// Whether a time had no zone and was taken as local.
    bool HasLocal() const noexcept { return m_hasLocal; }

private:
    /// Seconds that the clock is ahead of UTC in the days before and after a local hour.
    struct Ahead {
        std::int64_t before = 0, after = 0;
    };
    const Ahead& AheadAt(std::int64_t localHour);
    std::optional<std::int64_t> FromLocal(std::int64_t local, double fraction);

    bool m_isUtc, m_hasLocal = false;
    std::size_t m_skipped = 0, m_repeated = 0;
    std::optional<double> m_last;  // the time read before
    bool m_isFalling = false;      // it was before the one before it
    // Of the hour asked for last: the rows of a table are mostly in the same one, and the system is slow to say it.
    std::optional<std::int64_t> m_hour;
    Ahead m_ahead;
};

}  // namespace tool
