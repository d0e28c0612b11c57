#pragma once

#include <cmath>

namespace qel {

/// From the values of an axis to places along it.
struct AxisPlaces {
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

}  // namespace qel
