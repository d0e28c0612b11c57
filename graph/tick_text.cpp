#include "qellib10/graph/tick_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string_view>

#include "qellib10/platform/text/number_text.h"

namespace qel {
namespace {

constexpr std::size_t kLongestPlain = 12;
constexpr int kMostDecimals = 52;  // of a double from 1 on
constexpr int kLargestExponent = 330;

void Increment(std::string& digits) {
    for (std::size_t i = digits.size(); i-- > 0;) {
        if (digits[i] != '9') {
            ++digits[i];
            return;
        }
        digits[i] = '0';
    }
    digits.insert(0, 1, '1');
}

std::string WithoutLeadingZeros(const std::string& digits) {
    const std::size_t first = digits.find_first_not_of('0');
    return first == std::string::npos ? "0" : digits.substr(first);
}

// Rounded to a multiple of 10^place from its exact digits, half away from zero.
DecimalDigits RoundedDigits(double magnitude, int place) {
    std::string digits = FixedText(magnitude, place > 0 ? kMostDecimals : -place);
    std::erase(digits, '.');
    if (place > 0) {
        const std::size_t cut = static_cast<std::size_t>(kMostDecimals) + static_cast<std::size_t>(place);
        if (digits.size() < cut) digits.insert(0, cut - digits.size(), '0');
        const bool isUp = digits[digits.size() - cut] >= '5';
        digits.resize(digits.size() - cut);
        if (isUp) Increment(digits);
    }
    return {WithoutLeadingZeros(digits), place};
}

// The place of the last digit that a step decides on.
int LastPlace(double value, double step) {
    return ShortestDigits(std::abs(step != 0 && std::isfinite(step) ? step : value)).place;
}

std::string Signed(double value, const DecimalDigits& digits, const std::string& text) {
    return value < 0 && digits.digits != "0" ? kMinus + text : text;
}

std::string PointText(const DecimalDigits& number, int exponent) {
    std::string text = number.digits;
    const std::size_t decimals = static_cast<std::size_t>(exponent - number.place);
    if (text.size() <= decimals) text.insert(0, decimals + 1 - text.size(), '0');
    if (decimals > 0) text.insert(text.size() - decimals, 1, '.');
    return text;
}

std::string ScientificText(const DecimalDigits& number) {
    if (number.digits == "0") return "0";
    std::string text = number.digits;
    if (text.size() > 1) text.insert(1, 1, '.');
    const std::string size = std::to_string(std::abs(number.Exponent()));
    text += number.Exponent() < 0 ? std::string("e") + kMinus : "e+";
    return text + (size.size() < 2 ? "0" : "") + size;
}

}  // namespace

DecimalDigits ShortestDigits(double magnitude) {
    std::array<char, 32> buffer;
    const auto written =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), magnitude, std::chars_format::scientific);
    const std::string_view text(buffer.data(), written.ptr);
    const std::size_t mark = text.find('e');
    const std::size_t sign = mark + (text[mark + 1] == '+' ? 2 : 1);  // from_chars knows no plus
    DecimalDigits result{std::string(text.substr(0, mark))};
    std::erase(result.digits, '.');
    std::from_chars(text.data() + sign, text.data() + text.size(), result.place);
    result.place -= static_cast<int>(result.digits.size()) - 1;
    return result;
}

double Scaled(std::int64_t whole, int exponent) {
    const std::string text = std::to_string(whole) + "e" + std::to_string(exponent);
    double value = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), value).ec == std::errc()) return value;
    return exponent < 0 ? 0 : std::copysign(std::numeric_limits<double>::infinity(), static_cast<double>(whole));
}

std::string PlainText(double value, double step, int exponent) {
    if (!std::isfinite(value)) return FixedText(value, 0);
    exponent = std::clamp(exponent, -kLargestExponent, kLargestExponent);
    const DecimalDigits digits = RoundedDigits(std::abs(value), std::min(LastPlace(value, step), exponent));
    return Signed(value, digits, PointText(digits, exponent));
}

std::string ScientificText(double value, double step) {
    const DecimalDigits digits = RoundedDigits(std::abs(value), LastPlace(value, step));
    return Signed(value, digits, ScientificText(digits));
}

std::string NumberText(double value, double step, int exponent) {
    std::string plain = PlainText(value, step, exponent);
    if (exponent != 0 || !std::isfinite(value) || Characters(plain) <= kLongestPlain) return plain;
    // From here the zeros before the point say nothing: the digits are those of the step, also above 1.
    std::string scientific = ScientificText(value, step);
    return Characters(scientific) < Characters(plain) ? scientific : plain;
}

std::size_t Characters(std::string_view text) {
    return static_cast<std::size_t>(
        std::ranges::count_if(text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
}

std::string PowerText(int exponent) {
    static constexpr std::array<const char*, 10> kDigits = {"\u2070", "\u00B9", "\u00B2", "\u00B3", "\u2074",
                                                            "\u2075", "\u2076", "\u2077", "\u2078", "\u2079"};
    std::string text = "10";
    for (const char character : std::to_string(exponent))
        text += character == '-' ? "\u207B" : kDigits[static_cast<std::size_t>(character - '0')];
    return text;
}

int AxisExponent(double largest, ChartExponent kind) {
    if (kind == ChartExponent::kNone) return 0;
    const bool isPower = kind == ChartExponent::kPower;
    if (largest < (isPower ? 1e5 : 1e3) && largest >= (isPower ? 1e-3 : 1)) return 0;
    const int exponent = ShortestDigits(largest).Exponent();
    return (exponent - (exponent % 3 + 3) % 3);
}

std::string FactorText(int exponent, ChartExponent kind) {
    static constexpr std::array<const char*, 17> kPrefixes = {"y", "z", "a", "f", "p", "n", "\u00B5", "m", "",
                                                              "k", "M", "G", "T", "P", "E", "Z",      "Y"};
    if (exponent == 0) return {};
    const int prefix = exponent / 3 + 8;
    if (kind == ChartExponent::kSiPrefix && prefix >= 0 && prefix < static_cast<int>(kPrefixes.size()))
        return kPrefixes[static_cast<std::size_t>(prefix)];
    return "\u00D7" + PowerText(exponent);
}

}  // namespace qel
