#pragma once

#include <cmath>
#include <vector>

#include "qellib10/platform/export.h"

namespace qel {

/// From the values of an axis to places along it, evenly.
struct AxisPart {
    double low = 0, high = 1;  ///< low < high; of a logarithmic axis both above 0
    bool isLogarithmic = false;
    double from = 0, to = 1;  ///< device units of low and high

    double At(double value) const noexcept {
        if (isLogarithmic && !(value > 0)) return std::nan("");
        // Not the logarithm of a quotient, which may be infinite.
        const double share =
            isLogarithmic ? (std::log(value) - std::log(low)) / (std::log(high) - std::log(low)) : Share(value);
        return from + share * (to - from);
    }
    double ValueAt(double place) const noexcept {
        const double share = (place - from) / (to - from);
        return isLogarithmic ? std::exp(std::log(low) + share * (std::log(high) - std::log(low)))
                             : low * (1 - share) + high * share;
    }
    /// Where bars and areas start.
    double BaseAt(double base) const noexcept { return At(isLogarithmic && !(base > 0) ? low : base); }

private:
    double Share(double value) const noexcept {
        const double length = high - low;
        if (std::isfinite(length)) return (value - low) * (1 / length);
        return (value / 2 - low / 2) / (high / 2 - low / 2);  // the length is more than a number can hold
    }
};

/// The same for a whole axis. One with breaks consists of parts, each with as many device units per value as the
/// others; beyond its ends the outer parts go on.
struct QELLIB10_API AxisPlaces : AxisPart {
    std::vector<AxisPart> parts = {};  ///< of an axis with breaks, by value; else empty
    double gap = 0;                    ///< device units that a break has, if there is space

    /// Not a number for a value that a break leaves out.
    double At(double value) const noexcept { return parts.empty() ? AxisPart::At(value) : AtInParts(value); }
    /// The same, but for a value that is left out the place where its break starts: it never falls as values rise.
    double Reached(double value) const noexcept { return parts.empty() ? AxisPart::At(value) : ReachedInParts(value); }
    /// In the gap of a break the nearer of its ends.
    double ValueAt(double place) const noexcept;
    /// The length of the values that are shown, on a linear axis.
    double Length() const noexcept;
    /// A step from @p place by @p distance; one that would end in a gap leads across it.
    double Stepped(double place, double distance) const noexcept;

private:
    double AtInParts(double value) const noexcept;
    double ReachedInParts(double value) const noexcept;
};

}  // namespace qel
