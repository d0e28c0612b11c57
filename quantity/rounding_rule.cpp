#include "qellib10/quantity/rounding_rule.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace qel {
namespace {

struct NamedRounding {
    DecimalRounding rounding;
    std::string_view name;
};
constexpr std::array kRoundings = {
    NamedRounding{DecimalRounding::kHalfAwayFromZero, "half away from zero"},
    NamedRounding{DecimalRounding::kHalfEven, "half even"},
    NamedRounding{DecimalRounding::kTowardZero, "truncation"},
    NamedRounding{DecimalRounding::kAwayFromZero, "away from zero"},
};

bool IsIn(int value, int least, int most) { return value >= least && value <= most; }

// The last place of a value with this many significant digits.
int LastPlace(const Decimal& value, int digits) { return value.Magnitude() - digits + 1; }

bool IsOdd(const Decimal& whole) {
    DecimalFlags ignored;
    return !Remainder(whole, Decimal(2), ignored).IsZero();
}

// Whether the magnitude goes up by one step, where @p rest of a step is above it.
bool RoundsUp(DecimalRounding rounding, const Decimal& rest, const Decimal& step, const Decimal& steps) {
    if (rest.IsZero() || rounding == DecimalRounding::kTowardZero) return false;
    if (rounding == DecimalRounding::kAwayFromZero) return true;
    DecimalFlags flags;
    const Decimal missing = Subtract(step, rest, flags);
    if (rest != missing) return rest > missing;
    return rounding == DecimalRounding::kHalfAwayFromZero || IsOdd(steps);
}

std::optional<int> NumberIn(std::string_view text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

// What is before @p end, where the text ends with it.
std::optional<std::string_view> Before(std::string_view text, std::string_view end) {
    return text.ends_with(end) ? std::optional(text.substr(0, text.size() - end.size())) : std::nullopt;
}

}  // namespace

RoundingRule RoundingRule::ToPlaces(DecimalRounding rounding, int places) { return {rounding, To::kPlaces, places}; }
RoundingRule RoundingRule::ToDigits(DecimalRounding rounding, int digits) { return {rounding, To::kDigits, digits}; }
RoundingRule RoundingRule::ToMultiple(DecimalRounding rounding, const Decimal& step) {
    return {rounding, To::kMultiple, 0, step};
}
RoundingRule RoundingRule::ToUncertainty(DecimalRounding rounding, int digits) {
    return {rounding, To::kUncertainty, digits};
}

// 9.96 has one more digit before the point when it is rounded to two: 10, not 10.0.
Decimal RoundingRule::ToDigits(const Decimal& value, int digits) const {
    DecimalFlags flags;
    const Decimal rounded = RoundTo(value, LastPlace(value, digits), m_rounding, flags);
    if (value.IsZero() || !rounded.IsFinite() || rounded.Magnitude() <= value.Magnitude()) return rounded;
    return RoundTo(rounded, LastPlace(rounded, digits), m_rounding, flags);  // drops a 0
}

Decimal RoundingRule::ToMultiple(const Decimal& value) const {
    DecimalFlags flags;
    const Decimal magnitude = value.Absolute();
    const Decimal rest = Remainder(magnitude, m_step, flags);
    Decimal steps = Divide(Subtract(magnitude, rest, flags), m_step, flags);
    if (RoundsUp(m_rounding, rest, m_step, steps)) steps = Add(steps, Decimal(1), flags);
    const Decimal result = Multiply(steps.Reduced(), m_step, flags);
    const Decimal rounded = RoundTo(result, m_step.Exponent(), m_rounding, flags);
    if (flags.isInexact || flags.isInvalid) return Decimal::NotANumber();
    return value.IsNegative() ? -rounded : rounded;
}

RoundedValue RoundingRule::Round(const Decimal& value, const std::optional<Decimal>& uncertainty) const {
    RoundedValue result{value, Decimal::NotANumber()};
    if (!value.IsFinite() || !IsValid()) return result;
    DecimalFlags flags;
    switch (m_to) {
        case To::kPlaces:
            result.rounded = RoundTo(value, -m_count, m_rounding, flags);
            break;
        case To::kDigits:
            result.rounded = value.IsZero() ? Decimal(0) : ToDigits(value, m_count);
            break;
        case To::kMultiple:
            result.rounded = ToMultiple(value);
            break;
        case To::kUncertainty:
            if (uncertainty && uncertainty->IsFinite() && *uncertainty > Decimal(0))
                result.rounded = RoundTo(value, ToDigits(*uncertainty, m_count).Exponent(), m_rounding, flags);
            break;
    }
    if (result.rounded.IsZero()) result.rounded = result.rounded.Absolute();
    return result;
}

bool RoundingRule::IsValid() const {
    switch (m_to) {
        case To::kPlaces:
            return IsIn(m_count, -kMostPlaces, kMostPlaces);
        case To::kDigits:
            return IsIn(m_count, 1, Decimal::kDigits);
        case To::kMultiple:
            return m_step.IsFinite() && m_step > Decimal(0);
        default:
            return IsIn(m_count, 1, 2);
    }
}

std::optional<int> RoundingRule::UncertaintyDigits() const {
    return m_to == To::kUncertainty ? std::optional(m_count) : std::nullopt;
}

RoundingRule RoundingRule::With(DecimalRounding rounding) const {
    RoundingRule rule = *this;
    rule.m_rounding = rounding;
    return rule;
}

std::string RoundingRule::Name() const {
    const auto named = std::ranges::find(kRoundings, m_rounding, &NamedRounding::rounding);
    const std::string name = std::string(named->name) + ", ";
    const std::string count = std::to_string(m_count);
    switch (m_to) {
        case To::kPlaces:
            return name + count + " decimal places";
        case To::kDigits:
            return name + count + " significant digits";
        case To::kMultiple:
            return name + "multiples of " + m_step.Text();
        default:
            return name + count + " digits of the uncertainty";
    }
}

std::optional<RoundingRule> RoundingRule::OfName(std::string_view name) {
    const auto valid = [](const RoundingRule& rule) { return rule.IsValid() ? std::optional(rule) : std::nullopt; };
    constexpr std::string_view kMultiples = "multiples of ";
    for (const NamedRounding& each : kRoundings) {
        if (!name.starts_with(each.name) || !name.substr(each.name.size()).starts_with(", ")) continue;
        const std::string_view rest = name.substr(each.name.size() + 2);
        const auto counted = [&](std::string_view end, To to) -> std::optional<RoundingRule> {
            const std::optional<std::string_view> number = Before(rest, end);
            const std::optional<int> count = number ? NumberIn(*number) : std::nullopt;
            return count ? valid({each.rounding, to, *count}) : std::nullopt;
        };
        if (rest.starts_with(kMultiples)) {
            DecimalFlags flags;
            const Decimal step = Decimal::OfText(rest.substr(kMultiples.size()), flags);
            return valid(ToMultiple(each.rounding, step));
        }
        for (const auto& [end, to] : {std::pair{" decimal places", To::kPlaces},
                                      {" significant digits", To::kDigits},
                                      {" digits of the uncertainty", To::kUncertainty}}) {
            if (const std::optional<RoundingRule> rule = counted(end, to)) return rule;
        }
    }
    return {};
}

LimitComparison CompareRounded(const Decimal& value, const Decimal& limit, const RoundingRule& rule) {
    const Decimal rounded = rule.Round(value).rounded;
    return {rounded <=> limit, rounded, true};
}

LimitComparison CompareUnrounded(const Decimal& value, const Decimal& limit) { return {value <=> limit, value, false}; }

}  // namespace qel
