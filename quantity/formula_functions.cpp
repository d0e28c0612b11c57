#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "qellib10/platform/text/utf8_name.h"
#include "qellib10/quantity/formula_hints.h"
#include "qellib10/quantity/formula_parser.h"

// The functions of formulas, with their arguments.
namespace qel {
namespace {

using Operation = FormulaOperation;

struct NamedFunction {
    std::string_view name;
    Operation operation;
    bool takesMany;  // at least one; else exactly one
};
constexpr std::array kFunctions = {
    NamedFunction{"min", Operation::kMin, true},      NamedFunction{"max", Operation::kMax, true},
    NamedFunction{"mean", Operation::kMean, true},    NamedFunction{"sum", Operation::kSum, true},
    NamedFunction{"abs", Operation::kAbs, false},     NamedFunction{"sqrt", Operation::kSqrt, false},
    NamedFunction{"exp", Operation::kExp, false},     NamedFunction{"ln", Operation::kLn, false},
    NamedFunction{"log10", Operation::kLog10, false}, NamedFunction{"log2", Operation::kLog2, false},
};

constexpr std::array kRoundings = {
    std::pair{std::string_view("half_away"), DecimalRounding::kHalfAwayFromZero},
    std::pair{std::string_view("half_even"), DecimalRounding::kHalfEven},
    std::pair{std::string_view("truncate"), DecimalRounding::kTowardZero},
    std::pair{std::string_view("away"), DecimalRounding::kAwayFromZero},
};

}  // namespace

FormulaParser::Part FormulaParser::Call(const FormulaToken& name) {
    const Nested nested(*this, name);
    if (name.text == "if") return If(name);
    if (name.text == "round") return Round(name);
    const auto function = std::ranges::find(kFunctions, name.text, &NamedFunction::name);
    if (function == kFunctions.end()) {
        std::vector<std::string_view> names = {"if", "round"};
        for (const NamedFunction& each : kFunctions) names.push_back(each.name);
        RefuseLookAlikes(m_text, name.position, name.length);
        const std::string wanted = FoldUtf8Name(name.text);
        if (wanted == "log") Refuse(FormulaError::Kind::kSyntax, name, "\"log10\" or \"ln\"");
        Refuse(FormulaError::Kind::kName, name, "a function", NearestName(wanted == "lg" ? "log10" : wanted, names));
    }
    std::size_t count = 0;
    do {
        Taken();  // the bracket or the comma
        Require(Condition(), Type::kNumber);
        ++count;
    } while (m_token.Is(","));
    Need(")", "a comma or a closing bracket");
    if (!function->takesMany && count != 1) Refuse(FormulaError::Kind::kArguments, name, "one argument");
    m_builder.Add(function->operation, name, count, 1 - static_cast<int>(count));
    return Since(name.position, Type::kNumber);
}

FormulaParser::Part FormulaParser::If(const FormulaToken& name) {
    Taken();
    Require(Condition(), Type::kTruth);
    const std::size_t otherwise = m_builder.AddJump(Operation::kIfNot, name, -1);
    Need(",", "a comma and what holds then");
    const Part first = Condition();
    const std::size_t end = m_builder.AddJump(Operation::kGoOn, name, 0);
    m_builder.LandHere(otherwise);
    m_builder.Forget();  // only one of the two is carried out
    Need(",", "a comma and what holds otherwise");
    Require(Condition(), first.type);
    m_builder.LandHere(end);
    Need(")", "a closing bracket");
    return Since(name.position, first.type);
}

FormulaParser::Part FormulaParser::Round(const FormulaToken& name) {
    Taken();
    Require(Condition(), Type::kNumber);
    Need(",", "a comma and the number of places");
    const RoundingRule rule = Rule();
    Need(")", "a comma or a closing bracket");
    m_builder.AddRounding(rule, name);
    return Since(name.position, Type::kNumber);
}

// A number, then possibly how, then possibly to what: 2, half_even, digits
RoundingRule FormulaParser::Rule() {
    const bool isNegative = m_token.Is("-");
    if (isNegative) Taken();
    if (m_token.kind != FormulaToken::Kind::kNumber) Expect("a number");
    const FormulaToken at = Taken();
    DecimalFlags flags;
    Decimal count = Decimal::OfText(at.text, flags);
    if (isNegative) count = -count;
    DecimalRounding rounding = DecimalRounding::kHalfAwayFromZero;
    if (m_token.Is(",")) {
        Taken();
        const auto found =
            std::ranges::find_if(kRoundings, [&](const auto& each) { return m_token.IsWord(each.first); });
        if (found == kRoundings.end()) Expect("half_away, half_even, truncate or away");
        rounding = found->second;
        Taken();
    }
    std::string_view to = "places";
    if (m_token.Is(",")) {
        Taken();
        if (!m_token.IsWord("places") && !m_token.IsWord("digits") && !m_token.IsWord("multiple"))
            Expect("places, digits or multiple");
        to = Taken().text;
    }
    if (to == "multiple") {
        if (count <= Decimal(0)) Refuse(FormulaError::Kind::kArguments, at, "a step above 0");
        return RoundingRule::ToMultiple(rounding, count);
    }
    const bool isPlaces = to == "places";
    const int least = isPlaces ? -RoundingRule::kMostPlaces : 1;
    const int most = isPlaces ? RoundingRule::kMostPlaces : Decimal::kDigits;
    if (!count.IsInteger() || count < Decimal(least) || count > Decimal(most))
        Refuse(FormulaError::Kind::kArguments, at,
               "a whole number from " + std::to_string(least) + " to " + std::to_string(most));
    const int whole = static_cast<int>(count.ToDouble());
    return isPlaces ? RoundingRule::ToPlaces(rounding, whole) : RoundingRule::ToDigits(rounding, whole);
}

}  // namespace qel
