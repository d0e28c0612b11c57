#include "qellib10/quantity/reading.h"

#include <algorithm>

#include "qellib10/calc/calc_variable_list.h"
#include "qellib10/platform/text/trimmed.h"

namespace qel {
namespace {

constexpr std::string_view kMissingText = "missing";
constexpr std::string_view kInvalidText = "invalid";

Reading Finite(Reading::Kind kind, const Decimal& value) {
    return value.IsFinite() ? Reading{kind, value, false, false, false, false, {}, {}, {}}
                            : Reading{Reading::Kind::kInvalid, {}, false, false, false, false, {}, {}, {}};
}

// The list rounds in binary: its 0.03 of four places may be 0.030000000000000002, and means 0.0300.
void MarkRounded(Reading& reading, int places) {
    reading.places = places;
    constexpr int kMost = RoundingRule::kMostPlaces;
    DecimalFlags flags;
    const Decimal rounded =
        RoundTo(reading.value, -std::clamp(places, -kMost, kMost), DecimalRounding::kHalfAwayFromZero, flags);
    if (!rounded.IsFinite() || rounded == reading.value) return;
    const Decimal reduced = rounded.Reduced();
    reading.value = reduced.Exponent() > 0 ? RoundTo(reduced, 0, DecimalRounding::kHalfAwayFromZero, flags) : reduced;
}

// What a list has rounded when it was added differs from the rounded value by the error of binary numbers alone.
bool IsSameInBinary(const Decimal& a, const Decimal& b) {
    constexpr int kDigitsOfDouble = 15;
    const RoundingRule rule = RoundingRule::ToDigits(DecimalRounding::kHalfEven, kDigitsOfDouble);
    return rule.Round(a).rounded == rule.Round(b).rounded;
}

}  // namespace

Reading Reading::Of(const Decimal& value) { return Finite(Kind::kValue, value); }
Reading Reading::Below(const Decimal& limit) { return Finite(Kind::kBelow, limit); }
Reading Reading::Above(const Decimal& limit) { return Finite(Kind::kAbove, limit); }

Reading Reading::OfDouble(double value) {
    Reading reading = Of(Decimal::OfDouble(value));
    reading.isFromBinary = reading.IsValue();
    return reading;
}

Reading Reading::OfResult(const ExactResult& result) {
    Reading reading;
    reading.cause = result.cause;
    switch (result.kind) {
        case ExactResult::Kind::kValue:
            reading.kind = Kind::kValue;
            break;
        case ExactResult::Kind::kBelow:
            reading.kind = Kind::kBelow;
            break;
        case ExactResult::Kind::kAbove:
            reading.kind = Kind::kAbove;
            break;
        default:
            reading.kind = Kind::kInvalid;
            return reading;
    }
    reading.value = result.value;
    reading.isFromBinary = result.isFromBinary;
    reading.isInexact = result.flags.isInexact;
    reading.isIncluded = result.isIncluded;
    reading.isComputed = true;
    return reading;
}

std::optional<Reading> Reading::OfText(std::string_view text) {
    text = Trimmed(text);
    if (text == kMissingText) return Reading{};
    if (text == kInvalidText) return Reading{Kind::kInvalid, {}, false, false, false, false, {}, {}, {}};
    Kind kind = Kind::kValue;
    if (text.starts_with('<')) kind = Kind::kBelow;
    if (text.starts_with('>')) kind = Kind::kAbove;
    if (kind != Kind::kValue) text.remove_prefix(1);
    const bool isIncluded = kind != Kind::kValue && text.starts_with('=');
    text = Trimmed(isIncluded ? text.substr(1) : text);
    DecimalFlags flags;
    const Decimal value = Decimal::OfText(text, flags);
    // A reading of more digits than fit is no reading.
    if (!value.IsFinite() || flags.isInexact) return {};
    return Reading{kind, value, false, false, isIncluded, false, {}, {}, {}};
}

std::string Reading::Text() const {
    switch (kind) {
        case Kind::kValue:
            return value.Text();
        case Kind::kBelow:
            return (isIncluded ? "<= " : "< ") + value.Text();
        case Kind::kAbove:
            return (isIncluded ? ">= " : "> ") + value.Text();
        case Kind::kMissing:
            return std::string(kMissingText);
        default:
            return std::string(kInvalidText);
    }
}

std::optional<std::vector<Reading>> ReadingsOf(const CCalcVariableList& list, RoundedList rounded) {
    const bool isRounded = list.GetRoundUpFlag() != 0;
    if (isRounded && rounded == RoundedList::kRefuse) return {};
    std::vector<Reading> readings;
    CCalcVariableList stored = list;
    stored.SetRoundUpFlag(0);
    CCalcVariable variable;
    for (int i = 0; list.GetVariableData(i, &variable) != 0; ++i) {
        Reading& reading = readings.emplace_back(Reading::OfDouble(variable.m_dValue));
        if (!isRounded || !reading.IsValue()) continue;
        MarkRounded(reading, list.GetRoundUpDigit());
        stored.GetVariableData(i, &variable);
        const Decimal before = Decimal::OfDouble(variable.m_dValue);
        if (!IsSameInBinary(before, reading.value)) reading.beforeRounding = before;
    }
    return readings;
}

}  // namespace qel
