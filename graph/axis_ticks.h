#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/platform/export.h"

namespace qel {

/// What the values of an axis are.
enum class ChartScale {
    kLinear,       ///< numbers, evenly
    kLogarithmic,  ///< numbers above 0, each decade of the same length
    kTime,         ///< seconds since 1970-01-01 00:00 UTC
    kCategories    ///< names at 0, 1, 2 ...
};

/// How large and small numbers are shortened, for the whole axis. What the texts leave out is in AxisTicks::factor.
enum class ChartExponent {
    kPower,     ///< "×10³", from 100000 on and below 0.001
    kSiPrefix,  ///< "k", from 1000 on and below 1; a power of ten below 1e-24 and from 1e27 on
    kNone       ///< all digits; "1e+20" where these are more than 12 characters
};

/// The clock that times are shown in.
enum class ChartClock {
    kUtc,
    kLocal  ///< the time zone of the process
};

struct AxisTick {
    double value;
    std::string text;      ///< UTF-8; empty at minor ticks, but on logarithmic axes 2 and 5 may have one
    bool isMinor = false;  ///< drawn shorter
};

/// The ticks of an axis. A text is the truth about its tick: the value is the double that is nearest to it.
struct AxisTicks {
    std::vector<AxisTick> ticks;  ///< ascending, inside the range, at most 1000
    double step = 0;              ///< of linear values, which have its digits; otherwise 0
    /// UTF-8: "×10³", "k", or what all times have in common: "2026-11-28 UTC", "2026 CET/CEST". Empty if nothing.
    std::string factor;
    int exponent = 0;  ///< numbers shown are values / 10^exponent
};

/// The space that ticks have. All lengths are in the same unit, for example pixels.
struct AxisSpace {
    double length;                                   ///< of the axis, above 0
    std::function<double(std::string_view)> extent;  ///< of a text along the axis, with the distance to the next text
    double shortestMinor = 5;                        ///< between ticks; minor ones are left out where it is less
};

/// @name Ticks of a range
/// The closest ticks whose texts, each centred on its tick, do not overlap. There are at least two with a text where
/// two texts have space: if only one round number is left, the first and the last number of a smaller step have one.
/// Ends of ranges are finite, and low < high.
/// @{

/// At steps of 1, 2, 2.5 or 5 and zeros. 2.5 with a decimal more is taken where 5 leaves less than four texts. An
/// exponent is used only where it makes the longest text shorter: 1000000000.0002 stays as it is. No text has more than
/// 15 digits, as many as a double holds; ranges too narrow for them, or for a step of 1e-307, have one tick or none.
QELLIB10_API AxisTicks LinearTicks(double low, double high, ChartExponent exponent, const AxisSpace& space);

/// At decades, or each second, third ... of them, with minor ticks at 2 to 9 or at 2 and 5, which have texts below
/// three decades where they fit. Below one decade, at linear steps. @p low is above 0; values below 1e-307 have no
/// ticks.
QELLIB10_API AxisTicks LogTicks(double low, double high, const AxisSpace& space);

/// At round times of the clock, from 1 ms to 5000 years, weeks on Mondays, for the years 1 to 9999. Texts are of ISO
/// 8601: "12:30:05.250", "12:30", "11-28", "2026-11". The first tick of a new day has its date. A local time that is
/// skipped or repeated when summer time changes has no tick or one.
QELLIB10_API AxisTicks TimeTicks(double low, double high, ChartClock clock, const AxisSpace& space);

/// At 0, 1, 2 ...; where not all names fit, each second, third ... is shown, and the others are minor ticks.
QELLIB10_API AxisTicks CategoryTicks(std::span<const std::string> names, double low, double high,
                                     const AxisSpace& space);
/// @}

struct AxisRange {
    double low, high;  ///< low < high, both finite
};

/// The range of an axis for data from @p low to @p high: 5 % more at both ends, half a category, or for a logarithmic
/// axis the decade (below three decades: 1, 2 or 5) before and after, below half a decade 5 % of the length. One value,
/// or values that differ only by rounding, get half their size at both ends, 1 around 0, half a minute around a time.
/// Ends that are infinite or NaN, and ends of a logarithmic axis that are not above 0, do not count.
QELLIB10_API AxisRange PaddedRange(double low, double high, ChartScale scale);

/// A number as an axis with this step shows it: @p value / 10^exponent with the decimals of @p step (0: of the value),
/// rounded half away from zero, "." in every locale, U+2212 as minus, no sign at 0. With exponent 0, "1e+20" if all
/// digits are more than 12 characters and that is shorter.
QELLIB10_API std::string NumberText(double value, double step, int exponent);

}  // namespace qel
