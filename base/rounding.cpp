#include "qellib10/base/power_of_ten.h"

#include <cmath>
#include <cstdint>

#include "qellib10/base/q_variant.h"

namespace qel {
namespace {

constexpr int kMaxExponent = 400;  // beyond the range of double

double RoundDecimals(double x, int digits, int mode, double sign) {
    const double scaled = InTenths(x, digits);
    if (!(scaled < kTooLargeTenths)) return x;
    // A hundredth of a unit of the first dropped digit corrects the error of doubles: 1.005 is seen as 1005, not as
    // 1004.
    const auto units = static_cast<std::int64_t>(std::floor(scaled + 0.01));
    const std::int64_t dropped = units % 10;
    std::int64_t kept = units / 10;
    if (mode == 0 ? dropped >= 5 : mode > 0 && dropped != 0) ++kept;
    const auto whole = static_cast<double>(kept);
    return digits == 0 ? whole * sign : whole * PowerOfTen(-digits) * sign;
}

double RoundBeforePoint(double x, int digits, int mode, double sign) {
    if (!std::isfinite(x)) return x;
    const double power = PowerOfTen(digits < -kMaxExponent ? kMaxExponent : -digits);
    const double size = std::fabs(x);
    const double units = mode == -1  ? std::floor(size / power)
                         : mode == 0 ? std::floor(size / power + 0.5)
                         : mode == 1 ? std::ceil(size / power)
                                     : size;
    return units == 0 ? units * sign : units * power * sign;  // 0 stays 0 with an infinite power
}

}  // namespace

double PowerOfTen(int exponent) {
    const auto count = static_cast<int>(kPowersOfTen.size());
    if (exponent >= 0 && exponent < count) return kPowersOfTen[static_cast<unsigned>(exponent)];
    if (exponent < 0 && exponent > -count) return kUnits[static_cast<unsigned>(-exponent)];
    return std::pow(10.0, exponent);
}

double InTenths(double x, int digits) {
    return std::fabs(x * PowerOfTen(digits < kMaxExponent ? digits + 1 : kMaxExponent));
}

double RoundByRule(double x, int digits, int mode) {
    const double sign = x < 0 ? -1 : 1;
    return digits >= 0 ? RoundDecimals(x, digits, mode, sign) : RoundBeforePoint(x, digits, mode, sign);
}

}  // namespace qel
