#include "qellib10/quantity/exact_result.h"

#include <algorithm>
#include <array>
#include <utility>

namespace qel {
namespace {

constexpr std::array kSubstitutions = {
    std::pair{LimitSubstitution::kNone, std::string_view("none")},
    std::pair{LimitSubstitution::kZero, std::string_view("zero")},
    std::pair{LimitSubstitution::kHalf, std::string_view("half of the limit")},
    std::pair{LimitSubstitution::kLimit, std::string_view("limit")},
};

}  // namespace

std::string_view NameOf(LimitSubstitution substitution) {
    for (const auto& [each, name] : kSubstitutions)
        if (each == substitution) return name;
    return {};
}

std::optional<LimitSubstitution> LimitSubstitutionOf(std::string_view name) {
    for (const auto& [each, eachName] : kSubstitutions)
        if (eachName == name) return each;
    return {};
}

// -0 is 0 to a reader.
std::string ExactResult::Text() const { return TextWith((value.IsZero() ? value.Absolute() : value).Text()); }
std::string ExactResult::PlainText() const { return TextWith((value.IsZero() ? value.Absolute() : value).PlainText()); }

std::string ExactResult::TextWith(const std::string& number) const {
    const std::string equal = isIncluded ? "= " : " ";
    switch (kind) {
        case Kind::kValue:
            return number;
        case Kind::kBelow:
            return "<" + equal + number;
        case Kind::kAbove:
            return ">" + equal + number;
        case Kind::kYes:
            return "yes";
        case Kind::kNo:
            return "no";
        case Kind::kUndecided:
            return "undecided";
        default:
            return "not determinable";
    }
}

std::optional<RoundedValue> ExactResult::Rounded(const RoundingRule& rule,
                                                 const std::optional<Decimal>& uncertainty) const {
    if (!IsNumberOrLimit()) return {};
    // An upper limit goes up, a lower one down.
    const bool isAway = (kind == Kind::kBelow) != value.IsNegative();
    const RoundingRule outwards = rule.With(isAway ? DecimalRounding::kAwayFromZero : DecimalRounding::kTowardZero);
    const RoundedValue result = (IsLimit() ? outwards : rule).Round(value, uncertainty);
    return result.rounded.IsNan() ? std::nullopt : std::optional(result);
}

}  // namespace qel
