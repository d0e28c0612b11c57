#include "qellib10/quantity/calculation.h"

#include <algorithm>
#include <utility>

#include "qellib10/platform/text/trimmed.h"
#include "qellib10/quantity/unit_characters.h"
#include "qellib10/quantity/unit_parser.h"

namespace qel {

namespace {

constexpr std::string_view kBlanks = " \t", kTimes = "×";

struct Parts {
    std::string_view reading, unit;
    std::string fault;
};

// A limit may have blanks before its number; a unit comes after the next ones.
Parts PartsOf(std::string_view text) {
    const auto skip = [&](std::size_t at) { return std::min(text.find_first_not_of(kBlanks, at), text.size()); };
    std::size_t start = skip(0);
    if (start < text.size() && (text[start] == '<' || text[start] == '>'))
        start = skip(start + (text.substr(start + 1).starts_with('=') ? 2 : 1));
    const std::size_t end = std::min(text.find_first_of(kBlanks, start), text.size());
    const std::string_view unit = text.substr(skip(end));
    Parts parts{text.substr(0, end), unit.substr(0, unit.find_last_not_of(kBlanks) + 1), {}};
    if (UnitParser::StartsWithExponent(parts.unit)) {
        parts.fault = "an exponent follows its number without a blank, as in 5e3";
    } else if (UnitParser::ContinuesNumber(parts.unit)) {
        parts.fault = "a number is written without blanks, as 1500; a factor of a unit follows ×, as in 5 × 1000/µL";
    } else if (parts.unit.starts_with(kTimes)) {
        const std::string_view after = Trimmed(parts.unit.substr(kTimes.size()));
        if (!after.empty() && IsDigit(after.front())) parts.unit = after;
    }
    return parts;
}

}  // namespace

std::optional<CalculationInput> CalculationInput::Of(std::string_view name, std::string_view text,
                                                     std::vector<UncertaintyComponent> components,
                                                     std::string_view origin) {
    const Parts parts = PartsOf(text);
    const std::optional<Reading> reading = Reading::OfText(parts.reading);
    if (!reading || !parts.fault.empty()) return {};
    return CalculationInput{std::string(name), *reading, std::string(parts.unit), std::string(origin),
                            std::move(components)};
}

std::string CalculationInput::WhyNot(std::string_view text) {
    const Parts parts = PartsOf(text);
    return Reading::OfText(parts.reading) ? parts.fault : std::string();
}

}  // namespace qel
