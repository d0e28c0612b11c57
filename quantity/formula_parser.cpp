#include "qellib10/quantity/formula_parser.h"

#include <array>
#include <utility>

namespace qel {
namespace {

using Operation = FormulaOperation;

constexpr int kDeepest = 200;  // brackets, signs, powers and functions in each other

constexpr std::array kComparisons = {
    std::pair{std::string_view("="), Operation::kEqual},
    std::pair{std::string_view("<>"), Operation::kNotEqual},
    std::pair{std::string_view("<"), Operation::kLess},
    std::pair{std::string_view("<="), Operation::kLessOrEqual},
    std::pair{std::string_view(">"), Operation::kGreater},
    std::pair{std::string_view(">="), Operation::kGreaterOrEqual},
};

}  // namespace

FormulaParser::Nested::Nested(FormulaParser& parser, const FormulaToken& at) : depth(parser.m_depth) {
    if (++depth > kDeepest) Refuse(FormulaError::Kind::kTooDeep, at, {});
}

void FormulaParser::Refuse(FormulaError::Kind kind, const FormulaToken& at, std::string expected, std::string nearest) {
    throw FormulaError{kind, at.position, at.length, std::move(expected), std::move(nearest), {}};
}

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

}  // namespace qel
