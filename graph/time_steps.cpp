#include "qellib10/graph/time_steps.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <optional>

namespace qel {
namespace {

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year;
using std::chrono::year_month_day;

constexpr std::int64_t kSecond = 1000, kMinute = 60 * kSecond, kHour = 60 * kMinute, kYear = 12;  // ms; months
constexpr std::int64_t kMonday = 4;                                                               // 1970-01-05
constexpr auto kMs = TimeStep::kMilliseconds;
constexpr auto kDays = TimeStep::kDays;
constexpr auto kMonths = TimeStep::kMonths;

constexpr TimeStep kTable[] = {
    {kMs, 1, kMs, 0},
    {kMs, 2, kMs, 1},
    {kMs, 5, kMs, 1},
    {kMs, 10, kMs, 2},
    {kMs, 20, kMs, 5},
    {kMs, 50, kMs, 10},
    {kMs, 100, kMs, 20},
    {kMs, 200, kMs, 50},
    {kMs, 500, kMs, 100},
    {kMs, kSecond, kMs, 200},
    {kMs, 2 * kSecond, kMs, 500},
    {kMs, 5 * kSecond, kMs, kSecond},
    {kMs, 10 * kSecond, kMs, 2 * kSecond},
    {kMs, 15 * kSecond, kMs, 5 * kSecond},
    {kMs, 30 * kSecond, kMs, 10 * kSecond},
    {kMs, kMinute, kMs, 15 * kSecond},
    {kMs, 2 * kMinute, kMs, 30 * kSecond},
    {kMs, 5 * kMinute, kMs, kMinute},
    {kMs, 10 * kMinute, kMs, 2 * kMinute},
    {kMs, 15 * kMinute, kMs, 5 * kMinute},
    {kMs, 30 * kMinute, kMs, 10 * kMinute},
    {kMs, kHour, kMs, 15 * kMinute},
    {kMs, 2 * kHour, kMs, 30 * kMinute},
    {kMs, 3 * kHour, kMs, kHour},
    {kMs, 6 * kHour, kMs, 2 * kHour},
    {kMs, 12 * kHour, kMs, 3 * kHour},
    {kDays, 1, kMs, 6 * kHour},
    {kDays, 2, kMs, 12 * kHour},
    {kDays, 7, kDays, 1},
    {kDays, 14, kDays, 7},
    {kMonths, 1, kMonths, 0},
    {kMonths, 3, kMonths, 1},
    {kMonths, 6, kMonths, 1},
    {kMonths, kYear, kMonths, 3},
    {kMonths, 2 * kYear, kMonths, 6},
    {kMonths, 5 * kYear, kMonths, kYear},
    {kMonths, 10 * kYear, kMonths, 2 * kYear},
    {kMonths, 20 * kYear, kMonths, 5 * kYear},
    {kMonths, 50 * kYear, kMonths, 10 * kYear},
    {kMonths, 100 * kYear, kMonths, 20 * kYear},
    {kMonths, 200 * kYear, kMonths, 50 * kYear},
    {kMonths, 500 * kYear, kMonths, 100 * kYear},
    {kMonths, 1000 * kYear, kMonths, 200 * kYear},
    {kMonths, 2000 * kYear, kMonths, 500 * kYear},
    {kMonths, 5000 * kYear, kMonths, 1000 * kYear},
};

constexpr std::int64_t DividedDown(std::int64_t value, std::int64_t by) {
    return value / by - (value % by < 0 ? 1 : 0);
}

constexpr std::int64_t DividedUp(std::int64_t value, std::int64_t by) { return -DividedDown(-value, by); }

std::int64_t Whole(double seconds) { return static_cast<std::int64_t>(std::floor(seconds)); }

year_month_day DateOf(std::int64_t wallSeconds) {
    return sys_days(days(static_cast<int>(DividedDown(wallSeconds, 86400))));
}

std::int64_t MonthOf(const year_month_day& date) {
    return static_cast<int>(date.year()) * kYear + static_cast<unsigned>(date.month()) - 1;
}

// Clock times span by span. A time that clocks showed already in an earlier span of the range is not repeated.
std::vector<double> ClockTimes(std::int64_t step, double low, double high, const WallClock& clock) {
    std::vector<double> times;
    std::int64_t shown = std::numeric_limits<std::int64_t>::min();  // ms, the latest so far
    std::int64_t shownFrom = shown;                                 // ms, the earliest in the span of the latest
    for (const auto& [begin, end, offset] : clock.Spans(Whole(low), Whole(high) + 1)) {
        const std::int64_t from = shownFrom, to = shown;
        bool isFirst = true;
        for (std::int64_t i = DividedUp((begin + offset) * 1000, step); i * step < (end + offset) * 1000; ++i) {
            const std::int64_t wall = i * step;
            const double time = static_cast<double>(wall - offset * 1000) / 1000;
            if (time < low || time > high || (wall >= from && wall <= to)) continue;
            times.push_back(time);
            if (isFirst) shownFrom = wall;
            isFirst = false;
            shown = wall;
        }
    }
    return times;
}

sys_days DateAt(const TimeStep& step, std::int64_t index) {
    if (step.unit == kDays) return sys_days(days(static_cast<int>(index * step.count + kMonday)));
    const std::int64_t month = index * step.count;
    return year(static_cast<int>(DividedDown(month, kYear))) /
           static_cast<int>(month - DividedDown(month, kYear) * kYear + 1) / 1;
}

std::int64_t IndexAt(const TimeStep& step, std::int64_t wallSeconds) {
    const std::int64_t place =
        step.unit == kDays ? DividedDown(wallSeconds, 86400) - kMonday : MonthOf(DateOf(wallSeconds));
    return DividedDown(place, step.count);
}

std::vector<double> Dates(const TimeStep& step, double low, double high, const WallClock& clock) {
    std::vector<double> times;
    const std::int64_t last = IndexAt(step, Whole(high) + 86400);
    for (std::int64_t i = IndexAt(step, Whole(low) - 86400); i <= last; ++i) {
        const std::optional<std::int64_t> second = clock.FirstSecond(DateAt(step, i));
        const double time = second ? static_cast<double>(*second) : low - 1;
        if (time >= low && time <= high) times.push_back(time);
    }
    return times;
}

std::string Digits(std::int64_t number, std::size_t columns) {
    const std::string text = std::to_string(number);
    return std::string(columns - std::min(columns, text.size()), '0') + text;
}

// A time as clocks show it.
struct Shown {
    Shown(double time, const WallClock& clock) {
        const std::int64_t utc = std::llround(time * 1000), seconds = DividedDown(utc, 1000);
        zone = clock.ZoneName(seconds);
        const std::int64_t wall = utc + clock.Offset(seconds) * 1000;
        date = DateOf(DividedDown(wall, 1000));
        ofDay = wall - DividedDown(wall, 86400 * kSecond) * 86400 * kSecond;
    }

    std::string Year() const { return Digits(static_cast<int>(date.year()), 4); }
    std::string Month() const { return Year() + "-" + Digits(static_cast<unsigned>(date.month()), 2); }
    std::string Date() const { return Month() + "-" + Digits(static_cast<unsigned>(date.day()), 2); }
    std::string Date(bool hasYear) const { return hasYear ? Date() : Date().substr(5); }
    std::string Time(std::int64_t step) const {
        std::string text = Digits(ofDay / kHour, 2) + ":" + Digits(ofDay / kMinute % 60, 2);
        if (step < kMinute) text += ":" + Digits(ofDay / kSecond % 60, 2);
        return step < kSecond ? text + "." + Digits(ofDay % kSecond, 3) : text;
    }

    std::string zone;
    year_month_day date;
    std::int64_t ofDay = 0;  // ms since midnight
};

// "CET/CEST".
std::string ZoneNames(const std::vector<Shown>& times) {
    std::vector<std::string> names;
    for (const Shown& time : times)
        if (std::ranges::find(names, time.zone) == names.end()) names.push_back(time.zone);
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : "/") + name;
    return text;
}

std::vector<std::string> ClockTexts(const std::vector<Shown>& times, std::int64_t step, bool hasYear, bool hasBreaks) {
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < times.size(); ++i) {
        const Shown& time = times[i];
        const bool isNewDay = i > 0 && time.date != times[i - 1].date;
        const bool isFirst = i == 0 && (time.ofDay == 0 || hasBreaks) && times.back().date != time.date;
        if (!isNewDay && !isFirst) {
            texts.push_back(time.Time(step));
        } else {
            texts.push_back(time.Date(hasYear) + (time.ofDay == 0 ? "" : " " + time.Time(step)));
        }
    }
    return texts;
}

}  // namespace

double TimeStep::Length() const {
    const double size = static_cast<double>(count);
    return unit == kMilliseconds ? size / 1000 : unit == kDays ? size * 86400 : size * 2629746;
}

std::span<const TimeStep> TimeStepTable() { return kTable; }

std::vector<double> TimesOf(const TimeStep& step, std::span<const AxisRange> parts, const WallClock& clock,
                            std::size_t most) {
    std::vector<double> times;
    for (const auto& [low, high] : parts) {
        if (step.count == 0 || (high - low) / step.Length() > static_cast<double>(most) + 2) return {};
        std::ranges::copy(step.unit == kMs ? ClockTimes(step.count, low, high, clock) : Dates(step, low, high, clock),
                          std::back_inserter(times));
    }
    return times.size() <= most ? times : std::vector<double>();
}

AxisTicks TimesWithTexts(const TimeStep& step, const std::vector<double>& times, const WallClock& clock,
                         bool hasBreaks) {
    std::vector<Shown> shown;
    for (const double time : times) shown.emplace_back(time, clock);
    const bool isOneYear = shown.front().date.year() == shown.back().date.year();
    const bool isOneDay = shown.front().date == shown.back().date;
    std::vector<std::string> texts;
    if (step.unit == kMs) {
        texts = ClockTexts(shown, step.count, !isOneYear, hasBreaks);
    } else {
        const bool isYears = step.unit == kMonths && step.count % kYear == 0;
        for (const Shown& time : shown)
            texts.push_back(step.unit == kDays ? time.Date(!isOneYear) : isYears ? time.Year() : time.Month());
    }
    AxisTicks axis;
    if (step.unit != kMonths) {
        if (isOneYear) axis.factor = (step.unit == kMs && isOneDay ? shown.front().Date() : shown.front().Year()) + " ";
        axis.factor += ZoneNames(shown);
    }
    for (std::size_t i = 0; i < times.size(); ++i) axis.ticks.push_back({times[i], texts[i]});
    return axis;
}

}  // namespace qel
