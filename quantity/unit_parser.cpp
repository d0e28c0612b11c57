#include "qellib10/quantity/unit_parser.h"

#include <algorithm>
#include <utility>

#include "qellib10/platform/text/printable_text.h"
#include "qellib10/platform/text/trimmed.h"
#include "qellib10/quantity/ucum_codes.h"
#include "qellib10/quantity/unit_characters.h"
#include "qellib10/quantity/unit_maker.h"
#include "qellib10/quantity/unit_symbols.h"

namespace qel {
namespace {

constexpr int kDeepest = 30;
constexpr std::string_view kUcum = "ucum:", kDegree = "°";
constexpr const char* kBlankInNumber = "a number is written without blanks, as 12345";
constexpr const char* kApart = "an exponent follows its number without a blank, as in 5e3; of charges e it is e^3";

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
    std::size_t factor = m_at;
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
        else if (!Take("*") && !Take(".") && !Take("-") && !Take(kDots[0]) && !Take(kDots[1])) {
            if (!StartsAtom()) RefuseHere();
            if (IsDigit(m_text[factor]) && ContinuesNumber(Rest()))
                throw Refusal{Quoted(m_text) + ": " + kBlankInNumber};
        }
        SkipBlanks();
        factor = m_at;
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
    // "° C" with a blank is no degree of angle times a coulomb.
    if (name == kDegree) {
        SkipBlanks();
        for (const std::string_view letter : {"C", "F"})
            if (Rest().starts_with(letter) && NameCharacter(Rest().substr(1)) == 0 && Take(letter)) name += letter;
    }
    if (name == "%" || name == "ppm" || name == "ppb") name += Basis();
    return Meaning(name, m_depth);
}

}  // namespace qel
