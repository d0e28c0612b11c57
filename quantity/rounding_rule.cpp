#include "qellib10/quantity/rounding_rule.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "qellib10/quantity/name_table.h"

namespace qel {
namespace {

constexpr std::array kRoundings = {
    Named{DecimalRounding::kHalfAwayFromZero, "half away from zero"},
    Named{DecimalRounding::kHalfEven, "half even"},
    Named{DecimalRounding::kTowardZero, "truncation"},
    Named{DecimalRounding::kAwayFromZero, "away from zero"},
};

struct Counted {
    std::string_view one, many;
};
constexpr Counted kPlaces = {" decimal place", " decimal places"},
                  kSignificant = {" significant digit", " significant digits"},
                  kOfUncertainty = {" digit of the uncertainty", " digits of the uncertainty"};
constexpr std::string_view kMultiples = "multiples of ";

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

// Where the text is a number and then @p end.
std::optional<int> NumberBefore(std::string_view text, std::string_view end) {
    return text.ends_with(end) ? NumberIn(text.substr(0, text.size() - end.size())) : std::nullopt;
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
    const std::string name = std::string(NameIn(kRoundings, m_rounding)) + ", ";
    const auto counted = [&](const Counted& what) {
        return name + std::to_string(m_count) + std::string(m_count == 1 ? what.one : what.many);
    };
    switch (m_to) {
        case To::kPlaces:
            return counted(kPlaces);
        case To::kDigits:
            return counted(kSignificant);
        case To::kMultiple:
            return name + std::string(kMultiples) + m_step.Text();
        default:
            return counted(kOfUncertainty);
    }
}

// Also "1 decimal places", which rules were named before.
std::optional<RoundingRule> RoundingRule::OfName(std::string_view name) {
    const auto valid = [](const RoundingRule& rule) { return rule.IsValid() ? std::optional(rule) : std::nullopt; };
    const std::optional<DecimalRounding> rounding = TakeNameFrom(kRoundings, name);
    if (!rounding || !name.starts_with(", ")) return {};
    name.remove_prefix(2);
    if (name.starts_with(kMultiples)) {
        DecimalFlags flags;
        const Decimal step = Decimal::OfText(name.substr(kMultiples.size()), flags);
        return valid(ToMultiple(*rounding, step));
    }
    for (const auto& [what, to] :
         {std::pair{kPlaces, To::kPlaces}, {kSignificant, To::kDigits}, {kOfUncertainty, To::kUncertainty}}) {
        for (const std::string_view end : {what.one, what.many})
            if (const std::optional<int> count = NumberBefore(name, end)) return valid({*rounding, to, *count});
    }
    return {};
}

LimitComparison CompareRounded(const Decimal& value, const Decimal& limit, const RoundingRule& rule) {
    const Decimal rounded = rule.Round(value).rounded;
    return {rounded <=> limit, rounded, true};
}

LimitComparison CompareUnrounded(const Decimal& value, const Decimal& limit) { return {value <=> limit, value, false}; }

}  // namespace qel
