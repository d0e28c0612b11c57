#include "qellib10/base/read_number.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <system_error>

#include "qellib10/platform/text/trimmed.h"

namespace qel {
namespace {

constexpr std::string_view kBlanks = "\t\n\v\f\r ";

std::string_view OrEmpty(const char* text) { return text != nullptr ? text : ""; }

}  // namespace

std::optional<double> ReadNumber(std::string_view text) {
    text = Trimmed(text, kBlanks);
    // from_chars accepts only "-" as a sign, and would read names of infinities.
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) return std::nullopt;
    }
    if (text.find_first_not_of("0123456789.,eE+-") != std::string_view::npos) return std::nullopt;
    std::string plain(text);
    std::ranges::replace(plain, ',', '.');
    double value = 0;
    const char* const end = plain.data() + plain.size();
    const auto [stop, error] = std::from_chars(plain.data(), end, value);
    if (error != std::errc() || stop != end) return std::nullopt;
    return value;
}

std::optional<double> ReadNumber(const char* text) { return ReadNumber(OrEmpty(text)); }

std::optional<double> ReadScpiNumber(std::string_view text) {
    using Limits = std::numeric_limits<double>;
    if (text.find(',') != std::string_view::npos) return std::nullopt;
    const std::optional<double> number = ReadNumber(text);
    if (number == 9.9e37) return Limits::infinity();
    if (number == -9.9e37) return -Limits::infinity();
    if (number == 9.91e37) return Limits::quiet_NaN();
    return number;
}

std::optional<double> ReadScpiNumber(const char* text) { return ReadScpiNumber(OrEmpty(text)); }

CString NumberText(double value) {
    const double size = std::fabs(value);
    const bool isPlain = size == 0 || (size >= 1e-4 && size < 1e15);
    std::array<char, 32> text{};
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), value,
                                            isPlain ? std::chars_format::fixed : std::chars_format::scientific);
    return CString(std::string_view(text.data(), end));
}

}  // namespace qel
