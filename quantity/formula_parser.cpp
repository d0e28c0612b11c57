#include "qellib10/quantity/formula_parser.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "qellib10/platform/text/utf8_name.h"
#include "qellib10/quantity/formula_constants.h"
#include "qellib10/quantity/formula_error.h"
#include "qellib10/quantity/formula_hints.h"

namespace qel {
namespace {

using Operation = FormulaOperation;

constexpr int kDeepest = 200;  // brackets, signs, powers and functions in each other
constexpr std::string_view kConstantPrefix = "const.";

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

constexpr std::array kComparisons = {
    std::pair{std::string_view("="), Operation::kEqual},
    std::pair{std::string_view("<>"), Operation::kNotEqual},
    std::pair{std::string_view("<"), Operation::kLess},
    std::pair{std::string_view("<="), Operation::kLessOrEqual},
    std::pair{std::string_view(">"), Operation::kGreater},
    std::pair{std::string_view(">="), Operation::kGreaterOrEqual},
};

constexpr std::array kRoundings = {
    std::pair{std::string_view("half_away"), DecimalRounding::kHalfAwayFromZero},
    std::pair{std::string_view("half_even"), DecimalRounding::kHalfEven},
    std::pair{std::string_view("truncate"), DecimalRounding::kTowardZero},
    std::pair{std::string_view("away"), DecimalRounding::kAwayFromZero},
};

[[noreturn]] void Refuse(FormulaError::Kind kind, const FormulaToken& at, std::string expected,
                         std::string nearest = {}) {
    throw FormulaError{kind, at.position, at.length, std::move(expected), std::move(nearest), {}};
}

}  // namespace

// Counts how deep the parser is.
struct FormulaParser::Nested {
    Nested(FormulaParser& parser, const FormulaToken& at) : depth(parser.m_depth) {
        if (++depth > kDeepest) Refuse(FormulaError::Kind::kTooDeep, at, {});
    }
    ~Nested() { --depth; }
    Nested(const Nested&) = delete;
    Nested& operator=(const Nested&) = delete;
    int& depth;
};

FormulaParser::FormulaParser(std::string_view text, const FormulaScope& scope)
    : m_text(text), m_scope(scope), m_tokens(text) {
    Advance();
}

FormulaProgram FormulaParser::Parse() {
    const Part whole = Condition();
    if (m_token.kind != FormulaToken::Kind::kEnd) Expect("an operator");
    return m_builder.Finish(whole.type == Type::kTruth, whole.position, whole.length);
}

void FormulaParser::Expect(std::string expected) const {
    Refuse(FormulaError::Kind::kSyntax, m_token, std::move(expected));
}

FormulaToken FormulaParser::Taken() {
    const FormulaToken token = m_token;
    m_end = token.position + token.length;
    Advance();
    return token;
}

FormulaToken FormulaParser::Need(std::string_view operation, std::string expected) {
    if (!m_token.Is(operation)) Expect(std::move(expected));
    return Taken();
}

void FormulaParser::Require(const Part& part, Type wanted) const {
    if (part.type == wanted) return;
    throw FormulaError{FormulaError::Kind::kType,
                       part.position,
                       part.length,
                       wanted == Type::kNumber ? "a number" : "a condition",
                       {},
                       {}};
}

// The right side is only looked at where the left one does not decide.
template <class Next>
FormulaParser::Part FormulaParser::Joined(Operation jump, Operation operation, std::string_view word, Next next) {
    const std::size_t position = m_token.position;
    Part part = next();
    while (m_token.IsWord(word)) {
        Require(part, Type::kTruth);
        const FormulaToken at = Taken();
        const std::size_t skip = m_builder.AddJump(jump, at, 0);
        Require(next(), Type::kTruth);
        m_builder.Add(operation, at, 0, -1);
        m_builder.LandHere(skip);
        part = Since(position, Type::kTruth);
    }
    return part;
}

FormulaParser::Part FormulaParser::Condition() {
    return Joined(Operation::kOrElse, Operation::kOr, "or", [this] { return All(); });
}

FormulaParser::Part FormulaParser::All() {
    return Joined(Operation::kAndThen, Operation::kAnd, "and", [this] { return Negation(); });
}

FormulaParser::Part FormulaParser::Negation() {
    if (!m_token.IsWord("not")) return Comparison();
    const Nested nested(*this, m_token);
    const FormulaToken at = Taken();
    Require(Negation(), Type::kTruth);
    m_builder.Add(Operation::kNot, at, 0, 0);
    return Since(at.position, Type::kTruth);
}

FormulaParser::Part FormulaParser::Comparison() {
    const std::size_t position = m_token.position;
    const Part left = Sum();
    for (const auto& [sign, operation] : kComparisons) {
        if (!m_token.Is(sign)) continue;
        Require(left, Type::kNumber);
        const FormulaToken at = Taken();
        Require(Sum(), Type::kNumber);
        m_builder.Add(operation, at, 0, -1);
        return Since(position, Type::kTruth);
    }
    return left;
}

template <class Next, class... Operations>
FormulaParser::Part FormulaParser::Numbers(Next next, Operations... operations) {
    const std::size_t position = m_token.position;
    Part part = next();
    for (;;) {
        Operation operation = Operation::kNumber;
        ((operation = m_token.Is(operations.first) ? operations.second : operation), ...);
        if (operation == Operation::kNumber) return part;
        Require(part, Type::kNumber);
        const FormulaToken at = Taken();
        Require(next(), Type::kNumber);
        m_builder.Add(operation, at, 0, -1);
        part = Since(position, Type::kNumber);
    }
}

FormulaParser::Part FormulaParser::Sum() {
    return Numbers([this] { return Product(); }, std::pair{"+", Operation::kAdd}, std::pair{"-", Operation::kSubtract});
}

FormulaParser::Part FormulaParser::Product() {
    return Numbers([this] { return Signed(); }, std::pair{"*", Operation::kMultiply},
                   std::pair{"/", Operation::kDivide});
}

FormulaParser::Part FormulaParser::Signed() {
    if (!m_token.Is("-") && !m_token.Is("+")) return Power();
    const Nested nested(*this, m_token);
    const FormulaToken at = Taken();
    Require(Signed(), Type::kNumber);
    if (at.Is("-")) m_builder.Add(Operation::kNegate, at, 0, 0);
    return Since(at.position, Type::kNumber);
}

FormulaParser::Part FormulaParser::Power() {
    const std::size_t position = m_token.position;
    const Part base = Atom();
    if (!m_token.Is("^")) return base;
    const Nested nested(*this, m_token);
    Require(base, Type::kNumber);
    const FormulaToken at = Taken();
    Require(Signed(), Type::kNumber);
    m_builder.Add(Operation::kPower, at, 0, -1);
    return Since(position, Type::kNumber);
}

FormulaParser::Part FormulaParser::Atom() {
    const std::size_t position = m_token.position;
    if (m_token.Is("(")) {
        const Nested nested(*this, m_token);
        Taken();
        const Part inner = Condition();
        Need(")", "a closing bracket");
        return Since(position, inner.type);
    }
    switch (m_token.kind) {
        case FormulaToken::Kind::kNumber:
            return Number();
        case FormulaToken::Kind::kWord:
            return Word();
        case FormulaToken::Kind::kBracketed:
            return Variable(Taken());
        default:
            Expect("a number, a name or an opening bracket");
    }
}

FormulaParser::Part FormulaParser::Number() {
    const FormulaToken at = Taken();
    DecimalFlags flags;
    WrittenNumber number{Decimal::OfText(at.text, flags), 0.0, flags.isInexact};
    const auto [end, error] = std::from_chars(at.text.data(), at.text.data() + at.text.size(), number.nearest);
    const bool isTooLarge = error == std::errc::result_out_of_range && number.value.Magnitude() > 0;
    if (isTooLarge || flags.isTooLarge || !number.value.IsFinite()) Refuse(FormulaError::Kind::kTooLarge, at, {});
    m_builder.AddNumber(number, at);
    return Since(at.position, Type::kNumber);
}

// Variables win over functions and constants, so that a formula means what it meant before there were any.
FormulaParser::Part FormulaParser::Word() {
    const FormulaToken name = Taken();
    const bool isVariable = m_scope.Find(name.text).has_value();
    if (!isVariable && m_token.Is("(")) return Call(name);
    if (!isVariable && name.text.starts_with(kConstantPrefix)) {
        const std::string_view wanted = name.text.substr(kConstantPrefix.size());
        const auto constants = FormulaConstants();
        const auto found = std::ranges::find(constants, wanted, &FormulaConstant::name);
        if (found == constants.end()) {
            std::vector<std::string_view> names;
            for (const FormulaConstant& each : constants) names.push_back(each.name);
            Refuse(FormulaError::Kind::kName, name, "a constant", NearestName(wanted, names));
        }
        m_builder.Add(Operation::kConstant, name, static_cast<std::size_t>(found - constants.begin()), 1);
        return Since(name.position, Type::kNumber);
    }
    return Variable(name);
}

FormulaParser::Part FormulaParser::Variable(const FormulaToken& name) {
    const std::optional<std::size_t> position = m_scope.Find(name.text);
    if (!position) {
        if (name.kind == FormulaToken::Kind::kWord) RefuseLookAlikes(m_text, name.position, name.length);
        Refuse(FormulaError::Kind::kName, name, "a variable", WrittenName(m_scope.Nearest(name.text)));
    }
    m_builder.AddVariable(*position, name);
    return Since(name.position, Type::kNumber);
}

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
