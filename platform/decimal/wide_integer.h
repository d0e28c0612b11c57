#pragma once

// Whole numbers of 128 and 256 bits, for coefficients of 34 digits and their products.
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace qel {

__extension__ using Wide = unsigned __int128;

constexpr std::uint64_t LowOf(Wide value) { return static_cast<std::uint64_t>(value); }
constexpr std::uint64_t HighOf(Wide value) { return static_cast<std::uint64_t>(value >> 64); }
constexpr Wide WideOf(std::uint64_t high, std::uint64_t low) { return (static_cast<Wide>(high) << 64) | low; }

/// The most digits of which all numbers fit.
inline constexpr int kWideDigits = 38;

inline constexpr std::array kWidePowersOfTen = [] {
    std::array<Wide, kWideDigits + 1> powers = {1};
    for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 10;
    return powers;
}();

constexpr Wide WidePowerOfTen(int exponent) { return kWidePowersOfTen[static_cast<std::size_t>(exponent)]; }

constexpr int BitsOf(Wide value) {
    return static_cast<int>(HighOf(value) != 0 ? 64 + std::bit_width(HighOf(value)) : std::bit_width(LowOf(value)));
}

/// Decimal digits of @p value, at least 1.
constexpr int DigitsOf(Wide value) {
    const int least = BitsOf(value) * 1233 >> 12;  // times log10 of 2: right, or one too few
    return least + (least == 0 || value >= WidePowerOfTen(least) ? 1 : 0);
}

struct WideQuotient {
    Wide quotient = 0, rest = 0;
};

inline WideQuotient Divided(Wide value, Wide divisor) {
    // A call of the compiler's library for 128 bits, which takes longer.
    if ((HighOf(value) | HighOf(divisor)) == 0) return {LowOf(value) / LowOf(divisor), LowOf(value) % LowOf(divisor)};
    const Wide quotient = value / divisor;
    return {quotient, value - quotient * divisor};
}

/// A product of two: @p high times 2 to the power 128, and @p low.
struct WideProduct {
    Wide high = 0, low = 0;
};

inline WideProduct Product(Wide a, Wide b) {
    const Wide low = static_cast<Wide>(LowOf(a)) * LowOf(b), high = static_cast<Wide>(HighOf(a)) * HighOf(b);
    const Wide first = static_cast<Wide>(LowOf(a)) * HighOf(b), second = static_cast<Wide>(HighOf(a)) * LowOf(b);
    const Wide middle = static_cast<Wide>(HighOf(low)) + LowOf(first) + LowOf(second);
    return {high + HighOf(first) + HighOf(second) + HighOf(middle), WideOf(LowOf(middle), LowOf(low))};
}

/// @p divisor is above value.high, so that the quotient fits.
WideQuotient Divided(const WideProduct& value, Wide divisor);

}  // namespace qel
