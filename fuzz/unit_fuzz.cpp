// Laws: the text of a unit, of a product, a quotient and a root reads as the same unit and has itself as its text; a
// value that was converted without losing a digit is converted back to itself. The input is two units, one a line.
#include <algorithm>
#include <optional>
#include <string>

#include "law.h"
#include "qellib10/quantity/unit.h"

namespace {

using qel::Decimal;
using qel::Unit;

void CheckText(const std::optional<Unit>& unit) {
    if (!unit) return;
    const std::string text = unit->Text();
    std::string error;
    const std::optional<Unit> again = Unit::Parse(text, error);
    Require(again.has_value() && again->Text() == text);
    Require(qel::IsSameKind(*unit, *again));
    if (unit->Value().isExact && again->Value().isExact) Require(*again == *unit);
}

void CheckConversion(const Unit& from, const Unit& to) {
    qel::DecimalFlags flags;
    const Decimal value = Decimal::OfText("12.5", flags);
    const std::optional<Decimal> there = qel::Convert(value, from, to, flags);
    Require(there.has_value() == qel::ConversionOf(from, to).has_value());
    if (!there || flags.isInexact || !qel::IsSameKind(from, to)) return;
    const std::optional<Decimal> back = qel::Convert(*there, to, from, flags);
    Require(back.has_value() && (flags.isInexact || *back == value));
}

}  // namespace

extern "C" bool IsRead(const std::uint8_t* data, std::size_t size) {
    const std::string input = Text(data, size);
    std::string error;
    const std::size_t end = input.find('\n');
    return Unit::Parse(input.substr(0, end), error) && end != std::string::npos &&
           Unit::Parse(input.substr(end + 1), error);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > 600) return 0;
    const std::string input = Text(data, size);
    const std::size_t end = std::min(input.find('\n'), input.size());
    std::string error;
    const std::optional<Unit> first = Unit::Parse(input.substr(0, end), error);
    const std::optional<Unit> second = Unit::Parse(input.substr(std::min(end + 1, input.size())), error);
    CheckText(first);
    if (!first || !second) return 0;
    CheckText(Unit::Multiply(*first, *second));
    CheckText(Unit::Divide(*first, *second));
    CheckText(Unit::Power(*first, -3));
    CheckText(Unit::SquareRoot(*second));
    CheckConversion(*first, *second);
    return 0;
}
