#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "qellib10/graph/axis_ticks.h"

// Numbers in decimal digits: ticks are counted in whole numbers, so that the value of a tick is what its text says.
namespace qel {

inline constexpr const char* kMinus = "\u2212";

/// The digits of a number: digits * 10^place.
struct DecimalDigits {
    std::string digits;  ///< without leading zeros, but at least one
    int place = 0;       ///< of the last digit

    /// Of the first digit.
    int Exponent() const { return place + static_cast<int>(digits.size()) - 1; }
};

/// The fewest digits that give this double again. @p magnitude is finite and not below 0.
DecimalDigits ShortestDigits(double magnitude);

/// The double nearest to whole * 10^exponent; 0 or infinity outside its range.
double Scaled(std::int64_t whole, int exponent);

/// NumberText with all digits, however many.
std::string PlainText(double value, double step, int exponent);

/// "1.0e+12", with the digits of the step.
std::string ScientificText(double value, double step);

/// Of UTF-8.
std::size_t Characters(std::string_view text);

/// "10⁻³".
std::string PowerText(int exponent);

/// The exponent that brings numbers up to @p largest to 1 ... 1000, a multiple of 3; 0 if they need none.
int AxisExponent(double largest, ChartExponent kind);

/// "×10³", or "k" if there is a prefix.
std::string FactorText(int exponent, ChartExponent kind);

}  // namespace qel
