#include "qellib10/quantity/unit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "qellib10/quantity/unit_maker.h"
#include "qellib10/quantity/unit_parser.h"
#include "qellib10/quantity/unit_symbols.h"

namespace qel {
namespace {

constexpr std::size_t kMostTerms = 32;
// Factors that are read as a ratio of the kind.
struct RatioName {
    int ratios;
    const char* symbol;
    RatioOf meaning;  // of the symbol
};
constexpr RatioName kRatioNames[] = {
    {kRatioOfMasses, "g/g", kRatioOfMasses},
    {kRatioOfVolumes, "L/L", kRatioOfVolumes},
    {kRatioOfAmounts, "mol/mol", kRatioOfAmounts},
    {kRatioOfMasses | kRatioOfVolumes, "((g/L)/(g/L))", RatioOf{kRatioOfMasses | kRatioOfVolumes}},
    {kRatioOfMasses | kRatioOfAmounts, "((g/mol)/(g/mol))", RatioOf{kRatioOfMasses | kRatioOfAmounts}},
    {kRatioOfVolumes | kRatioOfAmounts, "((mol/L)/(mol/L))", RatioOf{kRatioOfVolumes | kRatioOfAmounts}},
    {kRatioOfAny, "((g*mol/L)/(g*mol/L))", kRatioOfAny},
    {kRatioOfMixed, "g/g", kRatioOfMasses},
    {kRatioOfMixed, "L/L", kRatioOfVolumes},
};

UnitValue Ratio(RatioOf ratio) {
    UnitValue value;
    value.ratios = ratio;
    return value;
}

}  // namespace

std::optional<Unit> Unit::Parse(std::string_view text, std::string& error) { return UnitParser::Parse(text, error); }

// Sign 1 gives the units above the line, -1 those below it.
std::string Unit::Product(const std::vector<Term>& terms, int sign, std::size_t& count) {
    std::string text;
    count = 0;
    for (const Term& term : terms) {
        if (term.power * sign <= 0) continue;
        if (count++ > 0) text += '*';
        const bool isAlone = terms.size() == 1 && term.power == 1;
        const bool isQuotient =
            term.value.ratios != 0 && !term.symbol.ends_with(')') && term.symbol.find('/') != std::string::npos;
        text += isQuotient && !isAlone ? '(' + term.symbol + ')' : term.symbol;
        if (std::abs(term.power) != 1) text += '^' + std::to_string(std::abs(term.power));
    }
    return text;
}

std::string Unit::Text() const {
    std::size_t above = 0, below = 0;
    std::string text = Product(m_terms, 1, above);
    const std::string divisor = Product(m_terms, -1, below);
    if (above == 0) text = "1";
    if (below == 0) return text;
    return text + '/' + (below > 1 ? '(' + divisor + ')' : divisor);
}

// What Parse makes of the text.
std::optional<UnitValue> Unit::ValueOfTerms() const {
    std::optional<UnitValue> above = UnitValue(), below = UnitValue();
    for (const Term& term : m_terms) {
        if (term.symbol.starts_with('(') && !term.value.IsRatio()) return {};  // is read as several terms
        const std::optional<UnitValue> power = PowerOfValue(term.value, std::abs(term.power));
        std::optional<UnitValue>& side = term.power > 0 ? above : below;
        if (!power || !side) return {};
        side = MultiplyValues(*side, *power);
    }
    if (!above || !below) return {};
    const bool isDivided = std::ranges::any_of(m_terms, [](const Term& term) { return term.power < 0; });
    return isDivided ? DivideValues(*above, *below) : above;
}

// Whether Parse makes of the text what it makes of a ratio of masses, say: in g/L*mL/g, it is one of volumes once g has
// canceled, and it was none before.
bool Unit::IsMeantByItsTerms() const {
    const std::optional<UnitValue> whole = ValueOfTerms();
    return whole && whole->ratios == m_value.ratios && whole->carried == m_value.carried &&
           whole->powers == m_value.powers;
}

void Unit::NameByValue() {
    m_terms.clear();
    const auto addNumber = [this](const Decimal& number, int power) {
        if (number == Decimal(1)) return;
        Term term = UnitMaker::Number(number).m_terms.front();
        term.power = power;
        m_terms.push_back(std::move(term));
    };
    addNumber(m_value.numerator, 1);
    addNumber(m_value.denominator, -1);
    for (const RatioName& name : kRatioNames)
        if ((m_value.ratios | m_value.carried) == name.ratios) m_terms.push_back({name.symbol, Ratio(name.meaning), 1});
    Unit bases;
    for (std::size_t i = 0; i < kBaseUnits; ++i)
        if (m_value.powers[i] != 0)
            bases.m_terms.push_back({std::string(BaseUnitSymbol(static_cast<BaseUnit>(i))),
                                     ValueOf(static_cast<BaseUnit>(i)), m_value.powers[i]});
    const std::size_t before = m_terms.size();
    m_terms.insert(m_terms.end(), bases.m_terms.begin(), bases.m_terms.end());
    if (m_value.carried == kRatioOfNothing || IsMeantByItsTerms()) return;
    // In brackets, or the kg of a volt takes the ratio up before the rest of the volt is read.
    m_terms.resize(before);
    bases.m_value.powers = m_value.powers;
    m_terms.push_back({'(' + bases.Text() + ')', bases.m_value, 1});
}

// mL*(g/g) is mL; else it is a number times @p like, or named by its value.
void Unit::DropComputedRatio(const Unit& like) {
    m_value.carried = kRatioOfNothing;
    std::erase_if(m_terms, [](const Term& term) { return term.value.IsRatio() && term.value.ratios != 0; });
    const auto isMeant = [this] {
        const std::optional<UnitValue> whole = ValueOfTerms();
        return whole && *whole == m_value && whole->carried == kRatioOfNothing;
    };
    const auto isNumber = [](const Term& term) { return term.value.IsRatio(); };
    if (isMeant() && std::ranges::none_of(m_terms, isNumber)) return;
    NameByValue();
    const std::optional<UnitValue> factor = DivideValues(m_value, like.m_value);
    if (!factor || like.HasOffset()) return;
    std::vector<Term> byValue = std::exchange(m_terms, like.m_terms);
    for (const auto& [number, power] : {std::pair(factor->denominator, -1), std::pair(factor->numerator, 1)}) {
        if (number == Decimal(1)) continue;
        m_terms.insert(m_terms.begin(), UnitMaker::Number(number).m_terms.front());
        m_terms.front().power = power;
    }
    if (m_terms.size() > kMostTerms || !isMeant()) m_terms = std::move(byValue);
}

std::optional<Unit> Unit::Combined(const Unit& a, const Unit& b, int sign) {
    if (a.HasOffset() || b.HasOffset()) return {};
    if (b.m_terms.empty() && b.m_value.perhaps == kRatioOfNothing) return a;
    if (a.m_terms.empty() && sign > 0) return b;
    const std::optional<UnitValue> value =
        sign > 0 ? MultiplyValues(a.m_value, b.m_value) : DivideValues(a.m_value, b.m_value);
    if (!value) return {};
    Unit result = a;
    result.m_value = *value;
    result.m_isDifference = a.m_isDifference || b.m_isDifference;
    for (const Term& term : b.m_terms) {
        const auto same = std::ranges::find(result.m_terms, term.value, &Term::value);
        if (same == result.m_terms.end())
            result.m_terms.push_back({term.symbol, term.value, sign * term.power});
        else
            same->power += sign * term.power;
    }
    std::erase_if(result.m_terms, [](const Term& term) { return term.power == 0; });
    if (std::ranges::any_of(result.m_terms, [](const Term& t) { return std::abs(t.power) > UnitValue::kMostPower; }))
        return {};
    if (!result.IsMeantByItsTerms()) result.NameByValue();
    if (result.m_terms.size() > kMostTerms || result.Text().size() > kLongest) return {};
    return result;
}

std::optional<Unit> Unit::Multiply(const Unit& a, const Unit& b) { return Combined(a, b, 1); }
std::optional<Unit> Unit::Divide(const Unit& a, const Unit& b) { return Combined(a, b, -1); }

std::optional<Unit> Unit::Power(const Unit& a, int power) {
    const std::optional<UnitValue> value = PowerOfValue(a.m_value, power);
    if (!value || a.HasOffset()) return {};
    Unit result = a;
    result.m_value = *value;
    for (Term& term : result.m_terms) {
        term.power *= power;
        if (std::abs(term.power) > UnitValue::kMostPower) return {};
    }
    if (power == 0) result.m_terms.clear();
    if (!result.IsMeantByItsTerms()) result.NameByValue();
    if (result.Text().size() > kLongest) return {};
    return result;
}

std::optional<Unit> Unit::SquareRoot(const Unit& a) {
    const std::optional<UnitValue> value = SquareRootOfValue(a.m_value);
    if (!value || a.HasOffset()) return {};
    Unit result = a;
    result.m_value = *value;
    const bool isEven = std::ranges::all_of(a.m_terms, [](const Term& term) { return term.power % 2 == 0; });
    for (Term& term : result.m_terms) term.power /= 2;
    if (!isEven || !result.IsMeantByItsTerms()) result.NameByValue();
    return result;
}

}  // namespace qel
