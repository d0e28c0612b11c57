#include "qellib10/quantity/unit_parser.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "qellib10/platform/text/printable_text.h"
#include "qellib10/platform/units/unit_library.h"
#include "qellib10/quantity/library_factors.h"
#include "qellib10/quantity/ucum_codes.h"
#include "qellib10/quantity/unit_maker.h"
#include "qellib10/quantity/unit_symbols.h"

namespace qel {
namespace {

constexpr int kDeepest = 30;
constexpr std::string_view kUcum = "ucum:";
constexpr const char* kApart = "an exponent follows its number without a blank, as in 5e3; of charges e it is e^3";
constexpr std::array<std::string_view, 12> kSuperscripts = {"⁰", "¹", "²", "³", "⁴", "⁵", "⁶", "⁷", "⁸", "⁹", "⁻", "⁺"};
constexpr std::array<std::string_view, 2> kDots = {"·", "⋅"};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsBlank(char c) { return c == ' ' || c == '\t'; }

std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
}

// The bytes of the character of a name that @p text starts with; 0 if there is none.
std::size_t NameCharacter(std::string_view text) {
    if (text.empty()) return 0;
    const auto first = static_cast<unsigned char>(text[0]);
    if (first < 0x80) {
        const bool isLetter = (first >= 'A' && first <= 'Z') || (first >= 'a' && first <= 'z');
        return isLetter || IsDigit(text[0]) || std::string_view("_%'\"").find(text[0]) != std::string_view::npos ? 1
                                                                                                                 : 0;
    }
    const auto starts = [&](std::string_view sign) { return text.starts_with(sign); };
    if (std::ranges::any_of(kSuperscripts, starts) || std::ranges::any_of(kDots, starts)) return 0;
    std::size_t length = 1;
    while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) ++length;
    return length;
}

// Names of numbers that say no basis, in any prefix: "ppmv", "percent".
bool NeedsBasis(std::string_view name) {
    std::string folded(name);
    std::ranges::transform(folded, folded.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? c + 32 : c; });
    return std::ranges::any_of(std::array{"pp", "percent", "%"},
                               [&](const char* each) { return folded.find(each) != std::string::npos; });
}

std::string Quoted(std::string_view text) { return '"' + PrintableText(text) + '"'; }

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

std::optional<Unit> UnitParser::Parse(std::string_view text, std::string& error) {
    text = Trimmed(text);
    if (text.size() > Unit::kLongest) {
        error = "a unit has at most " + std::to_string(Unit::kLongest) + " bytes";
        return {};
    }
    if (!IsUtf8(text)) {
        error = "the unit is not UTF-8";
        return {};
    }
    try {
        if (!text.starts_with(kUcum)) return UnitMaker::Stated(Read(text, 0));
        const std::string_view code = text.substr(kUcum.size());
        const auto found = std::ranges::find(UcumCodes(), code, &UcumCode::code);
        if (found != UcumCodes().end()) return UnitMaker::Stated(Read(found->text, 0));
        error = Quoted(code) + " is not a code of UCUM that is known here";
    } catch (const Refusal& refusal) {
        error = refusal.reason;
    }
    return {};
}

bool UnitParser::StartsWithExponent(std::string_view text) {
    if (!text.starts_with('e') && !text.starts_with('E')) return false;
    text = Trimmed(text.substr(1));
    if (text.starts_with('-') || text.starts_with('+')) text = Trimmed(text.substr(1));
    return !text.empty() && IsDigit(text.front());
}

Unit UnitParser::Read(std::string_view text, int depth) {
    if (depth > kDeepest) throw Refusal{"the unit is nested too deeply"};
    return text.empty() ? Unit() : UnitParser(text, depth).Whole();
}

void UnitParser::RefuseHere() const {
    throw Refusal{Quoted(m_text) + " is not a unit: " +
                  (m_at < m_text.size() ? "a name is expected at " + Quoted(Rest()) : "its end is missing")};
}

bool UnitParser::Take(std::string_view sign) {
    if (!Rest().starts_with(sign)) return false;
    m_at += sign.size();
    return true;
}

void UnitParser::SkipBlanks() {
    while (m_at < m_text.size() && IsBlank(m_text[m_at])) ++m_at;
}

bool UnitParser::StartsAtom() const { return Rest().starts_with('(') || NameCharacter(Rest()) > 0; }

Unit UnitParser::Whole() {
    const Unit product = Product();
    if (m_at == m_text.size()) return product;
    if (!Take("@")) RefuseHere();
    SkipBlanks();
    const bool isNegative = Take("-");
    const std::optional<Decimal> number = ReadNumber();
    if (!number || m_at != m_text.size()) RefuseHere();
    if (product.HasOffset() || product.Value() == ValueOf(BaseUnit::kSecond) || product.Value().IsRatio() ||
        number->IsZero())
        throw Refusal{Quoted(m_text) + " has a zero that no conversion is for"};
    // The name is made again, so that no blank is lost in it.
    return UnitMaker::Named(product.Text() + " @ " + (isNegative ? "-" : "") + number->Text(), product.Value(),
                            isNegative ? -*number : *number);
}

Unit UnitParser::Product() {
    SkipBlanks();
    Unit product = Power();
    for (;;) {
        SkipBlanks();
        if (m_at == m_text.size() || Rest().starts_with(')') || Rest().starts_with('@')) return product;
        const auto isWord = [this](std::string_view word) {
            return Rest().starts_with(word) && m_at + word.size() < m_text.size() &&
                   IsBlank(m_text[m_at + word.size()]);
        };
        if (isWord("as"))
            throw Refusal{Quoted(m_text) + ": a unit does not say of which substance it is, as " + Quoted(Rest()) +
                          " does"};
        bool isDivision = false;
        if (Rest().starts_with('.') && m_at + 1 < m_text.size() && IsDigit(m_text[m_at + 1]))
            throw Refusal{Quoted(m_text) + ": a point before a digit is neither a product nor a whole exponent"};
        if (Take("/") || ((isWord("per") || isWord("PER")) && (m_at += 3) > 0))
            isDivision = true;
        else if (!Take("*") && !Take(".") && !Take("-") && !Take(kDots[0]) && !Take(kDots[1]) && !StartsAtom())
            RefuseHere();
        SkipBlanks();
        const Unit next = Power();
        if (product.HasOffset() || next.HasOffset())
            throw Refusal{Quoted(m_text) + ": a temperature such as °C has no products and quotients; K has"};
        const auto result = isDivision ? Unit::Divide(product, next) : Unit::Multiply(product, next);
        if (!result) throw Refusal{Quoted(m_text) + " is out of the range of units"};
        product = *result;
    }
}

Unit UnitParser::Power() {
    const Unit base = Atom();
    const std::optional<int> exponent = Exponent();
    if (!exponent) return base;
    // The digits of m^2-1, m²3 and m^0.5 are no factor.
    const std::size_t sign = Rest().starts_with('.') || Rest().starts_with('-') ? 1 : 0;
    if (m_at + sign < m_text.size() && IsDigit(m_text[m_at + sign]))
        throw Refusal{Quoted(m_text) + ": an exponent is one whole number"};
    if (base.HasOffset()) throw Refusal{Quoted(m_text) + ": a temperature such as °C has no powers; K has"};
    const std::optional<Unit> power = Unit::Power(base, *exponent);
    if (!power) throw Refusal{Quoted(m_text) + " is out of the range of units"};
    return *power;
}

std::optional<int> UnitParser::Exponent() {
    if (const std::optional<int> superscript = Superscript()) return superscript;
    const std::size_t before = m_at;
    const bool isMarked = Take("^") || Take("**");
    const bool isNegative = Take("-");
    if (!isNegative) Take("+");
    int exponent = 0;
    const char* const first = m_text.data() + m_at;
    const auto [end, fault] = std::from_chars(first, m_text.data() + m_text.size(), exponent);
    if (end == first || *first == '-') {
        if (isMarked) RefuseHere();
        m_at = before;  // a minus before a name multiplies
        return {};
    }
    if (fault != std::errc() || exponent > UnitValue::kMostPower)
        throw Refusal{Quoted(m_text) + " is out of the range of units"};
    m_at += static_cast<std::size_t>(end - first);
    return isNegative ? -exponent : exponent;
}

std::optional<int> UnitParser::Superscript() {
    int exponent = 0, digits = 0;
    bool isNegative = false;
    std::size_t taken = 0;
    for (;; ++taken) {
        const auto sign =
            std::ranges::find_if(kSuperscripts, [&](std::string_view s) { return Rest().starts_with(s); });
        if (sign == kSuperscripts.end()) break;
        m_at += sign->size();
        const auto digit = static_cast<int>(sign - kSuperscripts.begin());
        if (digit >= 10 && taken > 0) RefuseHere();
        if (digit >= 10) {
            isNegative = digit == 10;
            continue;
        }
        exponent = exponent * 10 + digit;
        if (++digits > 3) throw Refusal{Quoted(m_text) + " is out of the range of units"};
    }
    if (taken == 0) return {};
    if (digits == 0) RefuseHere();
    return isNegative ? -exponent : exponent;
}

Unit UnitParser::Atom() {
    if (Take("(")) {
        if (++m_depth > kDeepest) throw Refusal{"the unit is nested too deeply"};
        const Unit inner = Product();
        if (!Take(")")) RefuseHere();
        --m_depth;
        return inner;
    }
    if (m_at < m_text.size() && IsDigit(m_text[m_at])) return Number();
    return Name();
}

std::optional<Decimal> UnitParser::ReadNumber() {
    const std::size_t start = m_at;
    const auto skipDigits = [this] {
        while (m_at < m_text.size() && IsDigit(m_text[m_at])) ++m_at;
    };
    const auto isDigitAt = [this](std::size_t at) { return at < m_text.size() && IsDigit(m_text[at]); };
    skipDigits();
    if (m_at == start) return {};
    if (Rest().starts_with('.') && isDigitAt(m_at + 1)) {
        ++m_at;
        skipDigits();
    }
    if (Rest().starts_with('e') || Rest().starts_with('E')) {
        const bool isSigned = m_at + 1 < m_text.size() && (m_text[m_at + 1] == '-' || m_text[m_at + 1] == '+');
        if (isDigitAt(m_at + (isSigned ? 2 : 1))) {
            m_at += isSigned ? 2 : 1;
            skipDigits();
        }
    }
    DecimalFlags flags;
    const Decimal number = Decimal::OfText(m_text.substr(start, m_at - start), flags);
    if (!number.IsFinite() || flags.isInexact || flags.isTooSmall)
        throw Refusal{Quoted(m_text) + ": its number has too many digits"};
    return number.Reduced();
}

Unit UnitParser::Number() {
    const std::optional<Decimal> number = ReadNumber();
    if (!number || number->IsZero()) throw Refusal{Quoted(m_text) + ": a unit is not 0"};
    if (*number == Decimal(1)) return {};
    const Unit unit = UnitMaker::Number(*number);
    // It has to be in range by itself.
    if (!MultiplyValues(UnitValue(), unit.Value())) throw Refusal{Quoted(m_text) + " is out of the range of units"};
    return unit;
}

// "(m/m)", also after blanks, and there without its brackets: "% w/w" is no percent times metre per metre.
std::string UnitParser::Basis() {
    const std::size_t before = m_at;
    SkipBlanks();
    const bool hasBlank = m_at > before, hasBrackets = Take("(");
    const auto isOf = [](char c) { return std::string_view("mwvn").find(c) != std::string_view::npos; };
    std::string basis(Rest().substr(0, std::string_view("m/m").size()));
    if ((hasBlank || hasBrackets) && basis.size() == 3 && isOf(basis[0]) && basis[1] == '/' && isOf(basis[2])) {
        m_at += basis.size();
        if (hasBrackets ? Take(")") : NameCharacter(Rest()) == 0) {
            std::ranges::replace(basis, 'w', 'm');
            return '(' + basis + ')';
        }
    }
    m_at = before;
    return {};
}

Unit UnitParser::Name() {
    const std::size_t start = m_at;
    while (const std::size_t length = NameCharacter(Rest())) m_at += length;
    // Digits at the end are an exponent, as in m2.
    while (m_at > start && IsDigit(m_text[m_at - 1])) --m_at;
    if (m_at == start) RefuseHere();
    if (StartsWithExponent(m_text.substr(start))) throw Refusal{Quoted(m_text) + ": " + kApart};
    std::string name(m_text.substr(start, m_at - start));
    if (name == "%" || name == "ppm" || name == "ppb") name += Basis();
    return Meaning(name, m_depth);
}

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
