#include "qellib10/base/measured_value.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "qellib10/base/read_number.h"
#include "qellib10/platform/text/trimmed.h"

namespace qel {
namespace {

constexpr std::string_view kDigits = "0123456789";
constexpr std::size_t kLongestUnit = 8;
constexpr double kNoReading = 9.9e37;  // for an infinity, and 9.91e37 for no number; also with a decimal comma

struct Replacement {
    std::string_view from, to;
};
constexpr Replacement kPlain[] = {{"\u2212", "-"}, {"\u2013", "-"}, {"\u00A0", " "},     {"\u202F", " "},
                                  {"\u2009", " "}, {"\u2019", "'"}, {"\u03BC", "\u00B5"}};

std::optional<double> ReadPlain(std::string_view text) {
    const auto number = ReadNumber(text);
    return number && std::abs(*number) < kNoReading ? number : std::nullopt;
}

bool IsDigit(char c) { return kDigits.find(c) != std::string_view::npos; }

// Groups of three digits after the first one, which has one to three of them.
bool IsGrouped(std::string_view whole, char separator) {
    const std::size_t sign = whole.starts_with('-') || whole.starts_with('+') ? 1 : 0;
    whole.remove_prefix(sign);
    std::size_t at = whole.find(separator);
    if (at == 0 || at > 3) return false;
    for (; at < whole.size(); at += 4) {
        if (whole[at] != separator || at + 4 > whole.size()) return false;
        if (!std::ranges::all_of(whole.substr(at + 1, 3), IsDigit)) return false;
    }
    return true;
}

std::optional<double> ReadGrouped(std::string_view text) {
    for (const char separator : {' ', '\'', ',', '.'}) {
        const std::size_t last = text.rfind(separator);
        if (last == std::string_view::npos) continue;
        const std::size_t end = std::min(text.find_first_not_of("0123456789", last + 1), text.size());
        const bool isOnlySign =
            (separator == ',' || separator == '.') && end == text.size() && text.find(separator) == last;
        if (isOnlySign || !IsGrouped(text.substr(0, end), separator)) continue;
        std::string plain(text);
        std::erase(plain, separator);
        return ReadPlain(plain);
    }
    return std::nullopt;
}

std::optional<double> ReadValue(std::string_view text) {
    const auto number = ReadPlain(text);
    return number ? number : ReadGrouped(Trimmed(text));
}

// Letters of any script are beyond ASCII, the degree and the mu too.
bool IsUnit(std::string_view text) {
    if (text.empty() || text.size() > kLongestUnit) return false;
    if (text == "E" || text == "e" || text.starts_with("E-") || text.starts_with("e-") || text.starts_with("E+") ||
        text.starts_with("e+"))
        return false;
    const auto first = static_cast<unsigned char>(text.front());
    return first >= 0x80 || first == '%' || (first >= 'A' && first <= 'Z') || (first >= 'a' && first <= 'z');
}

}  // namespace

std::string WithPlainCharacters(std::string_view text) {
    std::string plain(text);
    for (const auto& [from, to] : kPlain) {
        for (std::size_t at = 0; (at = plain.find(from, at)) != std::string::npos; at += to.size()) {
            plain.replace(at, from.size(), to);
        }
    }
    return plain;
}

std::optional<MeasuredValue> ReadMeasuredValue(std::string_view text) {
    if (const auto number = ReadPlain(text)) return MeasuredValue{*number, {}};
    const std::string plain = WithPlainCharacters(text);
    const std::string_view value = Trimmed(plain);
    if (const auto number = ReadValue(value)) return MeasuredValue{*number, {}};
    const std::size_t last = value.find_last_of(kDigits);
    if (last == std::string_view::npos) return std::nullopt;
    const std::size_t end = value.starts_with('.') || value[last] == '.' ? last : last + 1;
    const std::string_view unit = Trimmed(value.substr(end));
    if (!IsUnit(unit)) return std::nullopt;
    const auto number = ReadValue(value.substr(0, end));
    return number ? std::optional(MeasuredValue{*number, std::string(unit)}) : std::nullopt;
}

}  // namespace qel
