#include "qellib10/graph/axis_ticks.h"

#include <time.h>
#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <iomanip>
#include <limits>
#include <random>

#include "qellib10/graph/axis_breaks.h"
#include "qellib10/graph/linear_ticks.h"

#include "../support/soak.h"
#include "../support/test.h"

namespace {

using qel::AxisTicks, qel::ChartClock, qel::ChartExponent, qel::ChartScale;

constexpr double kLargest = std::numeric_limits<double>::max();

std::size_t Characters(std::string_view text) {
    return static_cast<std::size_t>(std::ranges::count_if(text, [](char byte) { return (byte & 0xC0) != 0x80; }));
}

// Characters 6 wide, 6 to the next text.
qel::AxisSpace Across(double length) {
    return {length, [](std::string_view text) { return static_cast<double>(6 * Characters(text) + 6); }};
}
qel::AxisSpace Up(double length) {
    return {length, [](std::string_view) { return 20.0; }};
}

// "0 5 10 | ×10³", and the number of minor ticks if there are any: "0 5 10 +8".
std::string Show(const AxisTicks& axis) {
    std::string line;
    int minor = 0;
    for (const qel::AxisTick& tick : axis.ticks) {
        if (tick.text.empty())
            ++minor;
        else
            line += (line.empty() ? "" : " ") + tick.text;
    }
    if (minor > 0) line += " +" + std::to_string(minor);
    return axis.factor.empty() ? line : line + " | " + axis.factor;
}

double At(int year, unsigned month, unsigned day, double seconds = 0) {
    const std::chrono::sys_days date = std::chrono::year(year) / static_cast<int>(month) / static_cast<int>(day);
    return static_cast<double>(date.time_since_epoch().count()) * 86400 + seconds;
}

// The number that a reader sees in "−2.5", "1e−20", "2×10⁻⁵" or "10³", times 10^exponent; NaN if it is none.
double Read(std::string text, int exponent) {
    const auto replace = [&text](std::string_view from, std::string_view to) {
        for (std::size_t at; (at = text.find(from)) != std::string::npos;) text.replace(at, from.size(), to);
    };
    const bool isPower = !std::isdigit(static_cast<unsigned char>(text.back()));
    replace("\u00D710", "e"), replace("\u2212", "-"), replace("\u207B", "-"), replace("e+", "e");
    const char* const raised[] = {"\u2070", "\u00B9", "\u00B2", "\u00B3", "\u2074",
                                  "\u2075", "\u2076", "\u2077", "\u2078", "\u2079"};
    for (std::size_t i = 0; i < 10; ++i) replace(raised[i], std::to_string(i));
    if (isPower && text.starts_with("10")) text = "1e" + text.substr(2);
    if (exponent != 0) text += "e" + std::to_string(exponent);
    double value = std::nan("");
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return end == text.data() + text.size() && error == std::errc() ? value : std::nan("");
}

// Whether a text of a time has the fields of the system's calendar, and what it leaves out is 0 (or the first day).
bool IsTrueTime(const qel::AxisTick& tick, ChartClock clock) {
    const auto milliseconds = std::llround(tick.value * 1000);
    const auto fraction = (milliseconds % 1000 + 1000) % 1000;
    const time_t seconds = (milliseconds - fraction) / 1000;
    tm fields{};
    (clock == ChartClock::kUtc ? gmtime_r : localtime_r)(&seconds, &fields);
    char full[64];
    std::snprintf(full, sizeof full, "%04d-%02d-%02d %02d:%02d:%02d.%03d", fields.tm_year + 1900, fields.tm_mon + 1,
                  fields.tm_mday, fields.tm_hour, fields.tm_min, fields.tm_sec, static_cast<int>(fraction));
    const bool hasDate = tick.text.find('-') != std::string::npos, hasTime = tick.text.find(':') != std::string::npos;
    const std::size_t at = hasTime && !hasDate ? 11 : hasDate && (tick.text.find('-') == 2) ? 5 : 0;
    const std::string text = full, least = "0001-01-01 00:00:00.000";
    const std::size_t end = at + tick.text.size();
    return text.compare(at, tick.text.size(), tick.text) == 0 && text.substr(end) == least.substr(end);
}

struct Axis {
    ChartScale scale;
    double low, high;
    ChartExponent exponent;
    ChartClock clock;
    double length;
    std::vector<qel::ChartBreak> breaks = {};

    qel::AxisPlaces Places() const {
        return qel::PlacesOf(qel::PartsOf(breaks, {low, high}), scale == ChartScale::kLogarithmic, 0, length, 8);
    }
};

AxisTicks TicksOf(const Axis& axis, const qel::AxisSpace& space) {
    if (const qel::AxisPlaces places = axis.Places(); !places.parts.empty()) {
        return axis.scale == ChartScale::kTime ? qel::TimeTicksAt(qel::TickPlaces(places), axis.clock, space)
                                               : qel::LinearTicksAt(qel::TickPlaces(places), axis.exponent, space);
    }
    switch (axis.scale) {
        case ChartScale::kLogarithmic:
            return qel::LogTicks(axis.low, axis.high, space);
        case ChartScale::kTime:
            return qel::TimeTicks(axis.low, axis.high, axis.clock, space);
        default:
            return qel::LinearTicks(axis.low, axis.high, axis.exponent, space);
    }
}

// What is wrong with an axis; empty if nothing.
std::string Fault(const Axis& axis) {
    int measured = 0;
    qel::AxisSpace space = Across(axis.length);
    space.extent = [&measured, extent = space.extent](std::string_view text) { return ++measured, extent(text); };
    const AxisTicks ticks = TicksOf(axis, space);
    const qel::AxisPlaces places = axis.Places();
    if (measured > (places.parts.empty() ? 5000 : 50'000)) return "slow";
    if (ticks.ticks.size() > 1000) return "too many";
    const auto from = [&](double value) {
        if (axis.scale != ChartScale::kLogarithmic) return value / 2 - axis.low / 2;
        const bool isNarrow = value / 2 < axis.low;
        return isNarrow ? std::log1p((value - axis.low) / axis.low) : std::log(value) - std::log(axis.low);
    };
    const auto place = [&](double value) {
        return places.parts.empty() ? from(value) / from(axis.high) * axis.length : places.At(value);
    };
    double end = -HUGE_VAL, before = -HUGE_VAL;
    int texts = 0;
    for (const qel::AxisTick& tick : ticks.ticks) {
        if (!(tick.value >= axis.low && tick.value <= axis.high) || std::isnan(place(tick.value))) return "outside";
        if (!(tick.value > before)) return "not ascending";
        before = tick.value;
        if (tick.text.empty()) continue;
        ++texts;
        const double half = space.extent(tick.text) / 2;
        if (place(tick.value) - half < end - 0.01) return "overlap at " + tick.text;
        end = place(tick.value) + half;
        const bool isTrue = axis.scale == ChartScale::kTime ? IsTrueTime(tick, axis.clock)
                                                            : Read(tick.text, ticks.exponent) == tick.value;
        if (!isTrue) return "untrue: " + tick.text;
    }
    for (const qel::AxisPart& part : places.parts) {
        // Less than a few of the steps that numbers of 15 digits, or times, can have.
        const double size = std::max(std::abs(axis.low), std::abs(axis.high));
        const double shortest = axis.scale == ChartScale::kTime ? 0.003 : std::max(1e-13 * size, 1e-304);
        const bool isLong = part.to - part.from >= 200 && part.high - part.low > shortest;
        const auto isIn = [&](const qel::AxisTick& tick) { return part.low <= tick.value && tick.value <= part.high; };
        if (isLong && std::ranges::none_of(ticks.ticks, isIn)) return "no text in a part";
    }
    return texts < 2 && places.parts.empty() && axis.length >= 300 && axis.high - axis.low > 1e-304 ? "no two texts"
                                                                                                    : "";
}

Axis AnyAxis(std::mt19937_64& random) {
    const auto among = [&random](double from, double to) { return std::uniform_real_distribution(from, to)(random); };
    const int kind = static_cast<int>(random() % 3);
    Axis axis{kind == 0   ? ChartScale::kLinear
              : kind == 1 ? ChartScale::kLogarithmic
                          : ChartScale::kTime,
              0,
              0,
              ChartExponent(random() % 3),
              ChartClock(random() % 2),
              std::pow(10, among(0, 3.5))};
    if (axis.scale == ChartScale::kTime) {
        axis.low = among(At(1, 1, 3), At(9999, 12, 1));
        if (random() % 2 == 0) axis.low = among(At(1990, 1, 1), At(2030, 1, 1));
        axis.high = std::min(axis.low + std::pow(10, among(-2, 11.5)), At(9999, 12, 30));
    } else {
        axis.low = std::pow(10, among(-300, 300));
        axis.high = random() % 2 == 0 ? std::pow(10, among(-300, 300)) : axis.low * (1 + std::pow(10, among(-12, 3)));
        if (axis.low > axis.high) std::swap(axis.low, axis.high);
        if (axis.scale == ChartScale::kLinear && random() % 2 == 0) axis.low = -axis.low;
        if (axis.scale == ChartScale::kLinear && random() % 2 == 0)
            axis = {axis.scale, -axis.high, -axis.low, axis.exponent, axis.clock, axis.length};
    }
    if (axis.scale != ChartScale::kLogarithmic && random() % 2 == 0) {
        for (auto i = 1 + random() % 3; i > 0; --i) {
            // Long ones leave short parts.
            const double first = std::pow(among(0, 1), 4), second = 1 - std::pow(among(0, 1), 4);
            const auto at = [&](double share) { return axis.low * (1 - share) + axis.high * share; };
            axis.breaks.push_back({at(first), random() % 2 == 0 ? at(second) : at(first + (1 - first) * 0.3)});
        }
    }
    return axis;
}

}  // namespace

TEST(AxisTicks, OfNumbersAreRoundAndHaveTheDigitsOfTheirStep) {
    constexpr auto kPower = ChartExponent::kPower, kPrefix = ChartExponent::kSiPrefix, kNone = ChartExponent::kNone;
    for (const auto& [low, high, exponent, space, expected] :
         Cases<double, double, ChartExponent, qel::AxisSpace, const char*>{
             {0, 1, kPower, Across(300), "0.0 0.1 0.2 0.3 0.4 0.5 0.6 0.7 0.8 0.9 1.0 +40"},
             {0, 10, kPower, Across(60), "0 5 10 +8"},
             {0.07, 0.1, kPower, Up(65), "0.07 0.08 0.09 0.10"},  // 0.07 / 0.01 is more than 7
             {-0.5, 0.5, kPower, Up(100), "\u22120.4 \u22120.2 0.0 0.2 0.4"},
             {0, 1.05e6, kPower, Across(60), "0.0 0.5 1.0 +8 | \u00D710\u2076"},
             {0, 1.05e6, kPower, Up(100), "0.00 0.25 0.50 0.75 1.00 | \u00D710\u2076"},  // 0.5 would be three only
             {0, 250, kNone, Up(220), "0 25 50 75 100 125 150 175 200 225 250"},         // no digit more than 50
             {0, 2.5, kNone, Up(160), "0.0 0.5 1.0 1.5 2.0 2.5 +20"},
             {0, 1e6, kNone, Up(90), "0 250000 500000 750000 1000000"},
             {123456, 123460, kPower, Across(300), "123456 123457 123458 123459 123460 +16"},
             {1e9 - 1e-3, 1e9 + 1e-3, kPower, Across(300), "999999999.999 1000000000.000 1000000000.001 +8"},
             {-3e-5, 2e-5, kPower, Across(60), "\u221220 0 20 +8 | \u00D710\u207B\u2076"},
             {0, 2000, kPrefix, Across(60), "0 1 2 +8 | k"},
             {-3e-5, 2e-5, kPrefix, Across(60), "\u221220 0 20 +8 | \u00B5"},
             {0, 1e30, kPrefix, Across(60), "0.0 0.5 1.0 +8 | \u00D710\u00B3\u2070"},
             {0, 1.2e12, kNone, Up(160), "0 2e+11 4e+11 6e+11 8e+11 1.0e+12 1.2e+12 +18"},  // all in one form
             {0, 5e20, kNone, Across(300), "0 1e+20 2e+20 3e+20 4e+20 5e+20 +20"},
             {1e-300, 1e300, kPower, Across(60), "0.5 1.0 +8 | \u00D710\u00B3\u2070\u2070"},
             {0, 1e-300, kPower, Across(60), "0.0 0.5 1.0 +8 | \u00D710\u207B\u00B3\u2070\u2070"},
             {-kLargest, kLargest, kPower, Up(100), "\u2212100 0 100 +14 | \u00D710\u00B3\u2070\u2076"},
             {11, 19, kPower, Across(45), "12 18 +2"},  // 10 and 20 are outside
             {1, std::nextafter(1, 2), kPower, Across(300), "1.0000000000000"},
             {0, 5e-324, kPower, Across(300), "0"},
         })
        EXPECT_EQ(Show(qel::LinearTicks(low, high, exponent, space)), expected) << low << ' ' << high;
}

TEST(AxisTicks, OfLogarithmsAreDecades) {
    for (const auto& [low, high, space, expected] : Cases<double, double, qel::AxisSpace, const char*>{
             {1, 1000, Across(300), "1 10 100 1000 +6"},
             {1, 1000, Across(1000), "1 10 100 1000 +24"},
             {1, 1000, Across(60), "1 100 +8"},
             {0.5, 9, Across(300), "0.5 1 2 5 +10"},
             {0.11, 9.9, Across(60), "0.5 5 +1"},
             {1e-5, 2e-4, Up(100),
              "10\u207B\u2075 2\u00D710\u207B\u2075 5\u00D710\u207B\u2075 10\u207B\u2074 2\u00D710\u207B\u2074"},
             {1e-6, 1e3, Across(60), "10\u207B\u2075 10\u2070 +8"},
             {1e-300, 1e300, Across(150), "10\u207B\u00B2\u2070\u2070 10\u2070 10\u00B2\u2070\u2070"},
             {2e-6, 5e-6, Across(60), "2 3 4 5 | \u00D710\u207B\u2076"},
             {1, std::nextafter(1, 2), Across(300), "1.0000000000000"},
             {5e-324, kLargest, Across(60), "10\u207B\u00B3\u2070\u2070 10\u00B3\u2070\u2070 +1"},
         })
        EXPECT_EQ(Show(qel::LogTicks(low, high, space)), expected) << low << ' ' << high;
}

TEST(AxisTicks, OfTimesAreRoundOnTheClock) {
    const EnvironmentScope zone("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
    ::tzset();
    constexpr auto kUtc = ChartClock::kUtc, kLocal = ChartClock::kLocal;
    const double day = At(2026, 11, 28);
    for (const auto& [low, seconds, clock, length, expected] : Cases<double, double, ChartClock, double, const char*>{
             {day, 0.005, kUtc, 100, "00:00:00.000 00:00:00.005 +4 | 2026-11-28 UTC"},
             {day + 45000, 60, kLocal, 300, "13:30:00 13:30:15 13:30:30 13:30:45 13:31:00 +8 | 2026-11-28 CET"},
             {day + 80000, 1e4, kUtc, 100, "23:00 11-29 01:00 +9 | 2026 UTC"},
             {day, 3 * 86400, kUtc, 200, "11-28 11-29 11-30 12-01 +9 | 2026 UTC"},
             {At(2026, 12, 31, 72000), 28800, kUtc, 200, "21:00 2027-01-01 03:00 +6 | UTC"},
             {day, 30 * 86400, kUtc, 500, "11-30 12-07 12-14 12-21 12-28 +26 | 2026 UTC"},
             {day, 100 * 86400, kUtc, 250, "2026-12 2027-01 2027-02 2027-03"},
             {day, 1000 * 86400, kLocal, 100, "2027 2028 2029 +8"},
             {At(1, 1, 1), 3.155e11, kLocal, 100, "2000 8000 +2"},
             {-1e300, 2e300, kLocal, 500, "5000"},
             {At(2026, 3, 28), 3 * 86400, kLocal, 150, "03-29 03-30 03-31 +9 | 2026 CET/CEST"},
             {At(2026, 3, 29), 14400, kLocal, 200, "01:00 03:00 04:00 05:00 06:00 +12 | 2026-03-29 CET/CEST"},
             {At(2026, 10, 24, 79200), 18000, kLocal, 250, "00:00 01:00 02:00 03:00 04:00 +12 | 2026-10-25 CEST/CET"},
             {At(2026, 10, 25, 3600), 3600, kLocal, 100, "02:00 02:30 03:00 +4 | 2026-10-25 CET"},  // the second time
         })
        EXPECT_EQ(Show(qel::TimeTicks(low, low + seconds, clock, Across(length))), expected) << std::fixed << low;
    // Midnight is skipped: the day starts at 01:00.
    const EnvironmentScope chile("TZ", "<-04>4<-03>,M9.1.6/24,M4.1.6/24");
    ::tzset();
    const AxisTicks days = qel::TimeTicks(At(2024, 9, 7, 3600), At(2024, 9, 10), kLocal, Across(150));
    EXPECT_EQ(Show(days), "09-07 09-08 09-09 +9 | 2024 UTC-04/UTC-03");
    EXPECT_EQ(std::ranges::find(days.ticks, "09-08", &qel::AxisTick::text)->value, At(2024, 9, 8, 14400));
}

TEST(AxisTicks, OfCategoriesLeaveOutNamesEvenly) {
    const std::vector<std::string> names = {"Blank", "A", "B", "C", "Standard", "D"}, many(5000, "x");
    for (const auto& [from, low, high, length, expected] :
         Cases<std::vector<std::string>, double, double, double, const char*>{
             {names, -0.5, 5.5, 300, "Blank A B C Standard D"},
             {names, -0.5, 5.5, 150, "Blank B Standard +3"},
             {names, -0.5, 5.5, 40, "Blank D +4"},
             {names, 1.5, 1e300, 150, "D"},
             {many, -1e300, 1e300, 1e9, "x"},
             {{}, -0.5, 0.5, 100, ""},
         })
        EXPECT_EQ(Show(qel::CategoryTicks(from, low, high, Across(length))), expected) << low << ' ' << length;
}

TEST(AxisTicks, AreNeverMoreThan1000) {
    const qel::AxisSpace space{1e9, [](std::string_view) { return 0.0; }, 0};
    for (const double high : {1.0, 1.001, 1.5, 2.0, 3.0, 9.0, 99.0, 1e9, 1e12, 1e300})
        for (const auto scale : {ChartScale::kLinear, ChartScale::kLogarithmic, ChartScale::kTime}) {
            const Axis axis{scale, 0.999, high, ChartExponent::kNone, ChartClock::kUtc, space.length};
            EXPECT_LE(TicksOf(axis, space).ticks.size(), 1000U) << high;
        }
    EXPECT_LE(qel::CategoryTicks(std::vector<std::string>(2500, "x"), 0, 2500, space).ticks.size(), 1000U);
}

TEST(AxisTicks, OfAnyRangeAreTrueAndDoNotOverlap) {
    const EnvironmentScope zone("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
    ::tzset();
    std::mt19937_64 random(SoakSeed());
    for (int i = 0; i < SoakCount(2000); ++i) {
        const Axis axis = AnyAxis(random);
        ASSERT_EQ(Fault(axis), "") << static_cast<int>(axis.scale) << std::setprecision(17) << ' ' << axis.low << ' '
                                   << axis.high << ' ' << axis.length;
    }
}

TEST(AxisTicks, RangesIncludeTheirData) {
    constexpr auto kLinear = ChartScale::kLinear, kLog = ChartScale::kLogarithmic;
    for (const auto& [low, high, scale, expected] : Cases<double, double, ChartScale, const char*>{
             {0, 100, kLinear, "-5 105"},
             {100, 0, kLinear, "-5 105"},
             {0, 0, kLinear, "-1 1"},
             {-4, -4, kLinear, "-6 -2"},
             {1, std::nextafter(1, 2), kLinear, "0.5 1.5"},
             {0, 5e-324, kLinear, "-1 1"},
             {NAN, 4, kLinear, "2 6"},
             {HUGE_VAL, -HUGE_VAL, kLinear, "-1 1"},
             {-kLargest, kLargest, kLinear, "-1.79769e+308 1.79769e+308"},
             {3, 40, kLog, "2 50"},
             {3, 4e4, kLog, "1 100000"},
             {3, 3, kLog, "1 10"},
             {1.001, 1.002, kLog, "1.00095 1.00205"},
             {-3, 5, kLog, "0.001 10"},
             {-3, -1, kLog, "1 10"},
             {5e-324, kLargest, kLog, "4.94066e-324 1.79769e+308"},
             {60, 60, ChartScale::kTime, "30 90"},
             {0, 3, ChartScale::kCategories, "-0.5 3.5"},
         }) {
        const qel::AxisRange range = qel::PaddedRange(low, high, scale);
        EXPECT_EQ(Line({range.low, range.high}), expected) << low << ' ' << high;
    }
}

TEST(AxisTicks, NumbersHaveTheDigitsOfTheStep) {
    for (const auto& [value, step, exponent, expected] : Cases<double, double, int, const char*>{
             {-12.25, 0.5, 0, "\u221212.3"},  // a tie, away from zero
             {-0.04, 0.5, 0, "0.0"},
             {1234, 500, 3, "1.2"},
             {1250, 500, 3, "1.3"},
             {1249.9, 500, 3, "1.2"},
             {996000, 1e4, 6, "1.00"},
             {-2.5e-7, 1e-7, -6, "\u22120.2"},  // the double is below the tie
             {2.5, 0, 0, "2.5"},
             {1234567890123, 1, 0, "1234567890123"},
             {1e20, 5e19, 0, "1.0e+20"},
             {-1e-20, 1e-20, 0, "\u22121e\u221220"},
             {NAN, 1, 0, "nan"},
         })
        EXPECT_EQ(qel::NumberText(value, step, exponent), expected) << value;
}
