#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tool {

/// Reads times of ISO 8601 in its extended form: "2026-11-28", "2026-11-28T10:15", "2026-11-28 10:15:30.25Z",
/// "2026-11-28T10:15:30+01:00". A comma is a decimal sign too.
class TimeReader {
public:
    /// @param isUtc times without a zone are UTC, else local time
    explicit TimeReader(bool isUtc) : m_isUtc(isUtc) {}

    /// Seconds since 1970-01-01 00:00 UTC. A local time that summer time skips is moved, of one that it repeats one of
    /// both is taken.
    /// @return nothing for another text, and for a day or a time that does not exist, such as February 30
    std::optional<double> Read(std::string_view text);
    /// Whether a time had no zone and was taken as local.
    bool HasLocal() const noexcept { return m_hasLocal; }

private:
    std::int64_t LocalHour(int year, int month, int day, int hour);

    bool m_isUtc, m_hasLocal = false;
    // Of the hour asked for last: the rows of a table are mostly in the same one, and the system is slow to say it.
    std::int64_t m_hour = -1, m_start = 0;
};

}  // namespace tool
