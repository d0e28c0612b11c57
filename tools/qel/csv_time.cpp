#include "csv_time.h"

#include <algorithm>
#include <chrono>
#include <ctime>

namespace tool {
namespace {

constexpr int kSecondsPerDay = 86400, kSecondsPerHour = 3600, kSecondsPerMinute = 60;

std::int64_t SecondsAhead(std::int64_t time) {
    const std::time_t seconds = time;
    std::tm fields{};
    return localtime_r(&seconds, &fields) != nullptr ? fields.tm_gmtoff : 0;
}

// Takes parts from the start of a text; after the first that is missing nothing is taken any more.
class Parts {
public:
    explicit Parts(std::string_view text) : m_rest(text) {}

    bool IsAll() const { return m_isGood && m_rest.empty(); }
    bool IsGood() const { return m_isGood; }
    bool Has(std::string_view anyOf) const { return !m_rest.empty() && anyOf.find(m_rest[0]) != std::string::npos; }

    char Take(std::string_view anyOf) {
        if (!Has(anyOf)) m_isGood = false;
        if (!m_isGood) return '\0';
        const char taken = m_rest[0];
        m_rest.remove_prefix(1);
        return taken;
    }

    int Number(int digits, int most) {
        int number = 0;
        for (int i = 0; i < digits; ++i) number = number * 10 + Take("0123456789") - '0';
        m_isGood = m_isGood && number <= most;
        return number;
    }

    double Fraction() {
        double fraction = 0, unit = 0.1;
        for (fraction = Number(1, 9) * unit; m_isGood && Has("0123456789");) {
            unit /= 10;
            fraction += Number(1, 9) * unit;
        }
        return fraction;
    }

private:
    std::string_view m_rest;
    bool m_isGood = true;
};

}  // namespace

const TimeReader::Ahead& TimeReader::AheadAt(std::int64_t localHour) {
    if (m_hour != localHour) {
        m_ahead = {SecondsAhead(localHour - kSecondsPerDay), SecondsAhead(localHour + kSecondsPerDay)};
        m_hour = localHour;
    }
    return m_ahead;
}

// @p local counts seconds as if local days had 24 hours; @p fraction follows them.
std::optional<std::int64_t> TimeReader::FromLocal(std::int64_t local, double fraction) {
    const auto& [before, after] = AheadAt(local - local % kSecondsPerHour);
    if (before == after) return local - before;
    const auto exists = [&](std::int64_t ahead) { return SecondsAhead(local - ahead) == ahead; };
    if (exists(before) && exists(after)) {
        ++m_repeated;
        const std::int64_t earlier = local - std::max(before, after), later = local - std::min(before, after);
        if (m_isFalling) return *m_last < static_cast<double>(later) + fraction ? earlier : later;
        return m_last && *m_last > static_cast<double>(earlier) + fraction ? later : earlier;
    }
    if (exists(before)) return local - before;
    if (exists(after)) return local - after;
    ++m_skipped;
    return std::nullopt;
}

std::optional<double> TimeReader::Read(std::string_view text) {
    Parts parts(text);
    const int year = parts.Number(4, 9999);
    parts.Take("-");
    const int month = parts.Number(2, 12);
    parts.Take("-");
    const int day = parts.Number(2, 31);
    int hour = 0, minute = 0, second = 0, ahead = 0;
    double fraction = 0;
    bool hasZone = false;
    if (parts.Has("T ")) {
        parts.Take("T ");
        hour = parts.Number(2, 23);
        parts.Take(":");
        minute = parts.Number(2, 59);
        if (parts.Has(":")) {
            parts.Take(":");
            second = parts.Number(2, 60);
            if (parts.Has(".,")) {
                parts.Take(".,");
                fraction = parts.Fraction();
            }
        }
        hasZone = parts.Has("Z+-");
        if (const char sign = hasZone ? parts.Take("Z+-") : 'Z'; sign != 'Z') {
            ahead = parts.Number(2, 23) * kSecondsPerHour;
            const bool hasColon = parts.Has(":");
            if (hasColon) parts.Take(":");
            if (hasColon || !parts.IsAll()) ahead += parts.Number(2, 59) * kSecondsPerMinute;
            if (sign == '-') ahead = -ahead;
        }
    }
    const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                                           std::chrono::day(static_cast<unsigned>(day))};
    if (!parts.IsAll() || year == 0 || !date.ok()) return std::nullopt;
    const bool isLocal = !hasZone && !m_isUtc;
    m_hasLocal = m_hasLocal || isLocal;
    const std::int64_t shown = std::chrono::sys_seconds(std::chrono::sys_days(date)).time_since_epoch().count() +
                               hour * kSecondsPerHour + minute * kSecondsPerMinute + second;
    const std::optional<std::int64_t> whole = isLocal ? FromLocal(shown, fraction) : shown - ahead;
    if (!whole) return std::nullopt;
    const double time = static_cast<double>(*whole) + fraction;
    if (m_last && *m_last != time) m_isFalling = time < *m_last;
    m_last = time;
    return time;
}

}  // namespace tool
