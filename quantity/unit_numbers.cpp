#include <algorithm>
#include <charconv>

#include "qellib10/platform/text/trimmed.h"
#include "qellib10/quantity/unit_characters.h"
#include "qellib10/quantity/unit_maker.h"
#include "qellib10/quantity/unit_parser.h"

// Numbers and exponents of units.
namespace qel {

bool UnitParser::StartsWithExponent(std::string_view text) {
    if (!text.starts_with('e') && !text.starts_with('E')) return false;
    text = Trimmed(text.substr(1));
    if (text.starts_with('-') || text.starts_with('+')) text = Trimmed(text.substr(1));
    return !text.empty() && IsDigit(text.front());
}

bool UnitParser::ContinuesNumber(std::string_view text) {
    std::size_t digits = 0;
    while (digits < text.size() && IsDigit(text[digits])) ++digits;
    const std::string_view number = text.substr(0, digits), rest = Trimmed(text.substr(digits));
    const auto follows = [&](std::string_view sign) { return rest.starts_with(sign); };
    if (number == "1") return !follows("/");
    const bool isPower =
        number == "10" && (follows("^") || follows("**") || std::ranges::any_of(kSuperscripts, follows));
    return digits > 0 && !isPower;
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

}  // namespace qel
