#include "qellib10/quantity/calculation.h"

#include <algorithm>
#include <utility>

#include "qellib10/quantity/unit_parser.h"

namespace qel {

// A limit may have blanks before its number; a unit comes after the next ones.
std::optional<CalculationInput> CalculationInput::Of(std::string_view name, std::string_view text,
                                                     std::vector<UncertaintyComponent> components,
                                                     std::string_view origin) {
    constexpr std::string_view kBlanks = " \t";
    const auto skip = [&](std::size_t at) { return std::min(text.find_first_not_of(kBlanks, at), text.size()); };
    std::size_t start = skip(0);
    if (start < text.size() && (text[start] == '<' || text[start] == '>'))
        start = skip(start + (text.substr(start + 1).starts_with('=') ? 2 : 1));
    const std::size_t end = std::min(text.find_first_of(kBlanks, start), text.size());
    const std::optional<Reading> reading = Reading::OfText(text.substr(0, end));
    if (!reading) return {};
    std::string_view unit = text.substr(skip(end));
    if (UnitParser::StartsWithExponent(unit)) return {};
    unit = unit.substr(0, unit.find_last_not_of(kBlanks) + 1);
    return CalculationInput{std::string(name), *reading, std::string(unit), std::string(origin), std::move(components)};
}

}  // namespace qel
