#include <algorithm>
#include <array>
#include <cstdlib>

#include "qellib10/platform/units/unit_library.h"
#include "qellib10/quantity/library_factors.h"
#include "qellib10/quantity/unit_characters.h"
#include "qellib10/quantity/unit_maker.h"
#include "qellib10/quantity/unit_parser.h"
#include "qellib10/quantity/unit_symbols.h"

// What the name of a unit means: a base unit, a symbol with or without a prefix, or what udunits2 has.
namespace qel {
namespace {

// Names of numbers that say no basis, in any prefix: "ppmv", "percent".
bool NeedsBasis(std::string_view name) {
    std::string folded(name);
    std::ranges::transform(folded, folded.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? c + 32 : c; });
    return std::ranges::any_of(std::array{"pp", "percent", "%"},
                               [&](const char* each) { return folded.find(each) != std::string::npos; });
}

// A double of udunits2 as the decimal number that it was made of: 0.45359237, or 1 by 86400. Doubles have noise in
// their last digits.
Decimal WithoutNoise(double value) {
    constexpr int kSure = 15;
    DecimalFlags flags;
    const Decimal all = Decimal::OfDouble(value);
    return RoundTo(all, all.Magnitude() - kSure + 1, DecimalRounding::kHalfEven, flags).Reduced();
}

// Where it was made of a longer number, all digits of the double are as good as any.
Decimal Shortest(double value) {
    constexpr int kDefined = 12;
    const Decimal number = WithoutNoise(value);
    return number.Digits() <= kDefined ? number : Decimal::OfDouble(value);
}

}  // namespace

Unit UnitParser::Meaning(std::string_view name, int depth) {
    if (const std::optional<BaseUnit> base = FindBaseUnit(name))
        return UnitMaker::Named(std::string(name), ValueOf(*base));
    const auto symbols = UnitSymbols();
    const auto found = std::ranges::find(symbols, name, &UnitSymbol::symbol);
    if (found != symbols.end()) return Named(name, found->definition, "1", found->isExact, depth);
    for (const UnitPrefix& prefix : UnitPrefixes()) {
        if (!name.starts_with(prefix.symbol)) continue;
        const auto root = std::ranges::find_if(symbols, [&](const UnitSymbol& each) {
            return each.Takes(prefix.symbol) && each.symbol == name.substr(prefix.symbol.size());
        });
        if (root != symbols.end()) return Named(name, root->definition, prefix.factor, root->isExact, depth);
    }
    return OfLibrary(name);
}

Unit UnitParser::Named(std::string_view name, std::string_view definition, std::string_view factor, bool isExact,
                       int depth) {
    const Unit unit = Read(definition, depth + 1);
    DecimalFlags flags;
    UnitValue scale;
    scale.numerator = Decimal::OfText(factor, flags);
    std::optional<UnitValue> value = MultiplyValues(unit.Value(), scale);
    if (!value) throw Refusal{Quoted(name) + " is out of the range of units"};
    value->isExact = value->isExact && isExact;
    return UnitMaker::Named(std::string(name), *value, unit.Offset());
}

Unit UnitParser::OfLibrary(std::string_view name) {
    if (NeedsBasis(name)) throw Refusal{Quoted(name) + " needs a basis, as in %(m/m), ppm(v/v) or ppb(n/n)"};
    LibraryUnit found;
    switch (FindLibraryUnit(name, found)) {
        case LibraryAnswer::kFound:
            break;
        case LibraryAnswer::kUnknown:
            throw Refusal{Quoted(name) + " is not a unit that is known"};
        case LibraryAnswer::kNoFactor:
            throw Refusal{Quoted(name) + " is not converted by a factor"};
        case LibraryAnswer::kMissing:
            throw Refusal{Quoted(name) + " is not a unit that is known without udunits2, which is not installed"};
    }
    std::optional<UnitValue> value = UnitValue();
    for (std::size_t i = 0; i < kLibraryUnits; ++i) {
        if (std::abs(found.powers[i]) > UnitValue::kMostPower)
            throw Refusal{Quoted(name) + " is out of the range of units"};
        value->powers[i] = static_cast<std::int8_t>(found.powers[i]);
    }
    if (const auto factor = DefinedFactor(WithoutNoise(found.scale))) {
        value->numerator = factor->value;
        value->denominator = factor->divisor;
        value->isExact = factor->isExact;
    } else if (const auto divisor = DefinedFactor(WithoutNoise(1.0 / found.scale))) {
        value->numerator = divisor->divisor;
        value->denominator = divisor->value;
        value->isExact = divisor->isExact;
    } else {
        value->numerator = Shortest(found.scale);
        value->isExact = false;
    }
    const Decimal offset = WithoutNoise(found.offset);
    value = MultiplyValues(*value, UnitValue());
    if (!value) throw Refusal{Quoted(name) + " is out of the range of units"};
    value->ratios = kRatioOfNothing;
    return UnitMaker::Named(std::string(name), *value, offset);
}

}  // namespace qel
