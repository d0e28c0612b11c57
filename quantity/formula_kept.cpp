#include "qellib10/quantity/formula_kept.h"

#include <string>
#include <vector>

#include "qellib10/calc/formula_grammar.h"
#include "qellib10/quantity/formula_error.h"
#include "qellib10/quantity/program_builder.h"

namespace qel {
namespace {

// The text as the grammar wants it: without blanks, after a byte that is no operator. Each byte's place in the formula.
struct Stripped {
    explicit Stripped(std::string_view formula) {
        for (std::size_t at = 0; at < formula.size() && formula[at] != '\0'; ++at) {
            if (formula[at] == ' ' || formula[at] == '\t') continue;
            text += formula[at];
            places.push_back(at);
        }
        end = formula.size();
    }

    const char* Start() const { return text.data() + 1; }
    std::size_t PlaceOf(const char* cursor) const {
        const auto index = static_cast<std::size_t>(cursor - Start());
        return index < places.size() ? places[index] : end;
    }
    FormulaToken Token(const char* first, std::size_t length) const {
        FormulaToken token;
        token.position = PlaceOf(first);
        token.length = length > 0 ? PlaceOf(first + length - 1) + 1 - token.position : 0;
        return token;
    }

    std::string text = " ";
    std::vector<std::size_t> places;
    std::size_t end = 0;
};

bool IsOfNumber(char c) { return (c >= '0' && c <= '9') || c == '.'; }

// Older formulas have no brackets for other names.
std::string NearestIn(const FormulaScope& scope, std::string_view name) {
    std::string nearest = scope.Nearest(name);
    return nearest.find_first_of(" \t()*+-/=") == std::string::npos ? nearest : "";
}

// What the grammar wanted where it stopped.
std::string_view ExpectedAt(const char* cursor) {
    if (IsDoubledOperator(cursor)) return "a number, a name or an opening bracket";
    if (*cursor == '\0') return "a closing bracket";
    if (*cursor == '(' && cursor[-1] == '-') return "a number or a name";  // a sign; the minus of a sum goes on
    if (*cursor == '.' && IsOfNumber(cursor[-1])) return "one decimal point in a number";
    return "an operator";
}

struct Pass {
    struct Operand {
        bool failed;
        bool Failed() const { return failed; }
    };

    Operand Error() const { return {true}; }

    Operand Number(const FormulaNumber& number) const {
        if (!number.name.empty()) {
            const FormulaToken token = stripped.Token(number.name.data(), number.name.size());
            const std::optional<std::size_t> position = scope.Find(number.name);
            if (!position)
                throw FormulaError{FormulaError::Kind::kName,
                                   token.position,
                                   token.length,
                                   "a variable",
                                   NearestIn(scope, number.name),
                                   {}};
            builder.AddVariable(*position, token);
        } else {
            AddNumber(number);
        }
        if (number.sign < 0.0) builder.Add(FormulaOperation::kNegate, stripped.Token(DigitsOf(number) - 1, 1), 0, 0);
        return {false};
    }

    // The grammar has read the digits before the name, and passes their value on, not themselves.
    const char* DigitsOf(const FormulaNumber& number) const {
        const char* first = number.name.data();
        while (first > stripped.Start() && IsOfNumber(first[-1])) --first;
        return first;
    }

    void AddNumber(const FormulaNumber& number) const {
        const char* const first = DigitsOf(number);
        const std::string digits = number.hasDigits ? std::string(first, number.name.data()) : "0";
        DecimalFlags flags;
        const Decimal value = Decimal::OfText(digits, flags);
        builder.AddNumber({value, number.digits, flags.isInexact},
                          stripped.Token(first, static_cast<std::size_t>(number.name.data() - first)));
    }

    Operand Combine(const char* operation, const Operand& /*left*/, const Operand& /*right*/) const {
        builder.Add(OperationOf(*operation), stripped.Token(operation, 1), 0, -1);
        return {false};
    }

    static FormulaOperation OperationOf(char operation) {
        switch (operation) {
            case '+':
                return FormulaOperation::kAdd;
            case '-':
                return FormulaOperation::kSubtract;
            case '*':
                return FormulaOperation::kMultiply;
            default:
                return FormulaOperation::kDivide;
        }
    }

    const Stripped& stripped;
    const FormulaScope& scope;
    ProgramBuilder& builder;
};

}  // namespace

FormulaProgram ParseKept(std::string_view text, const FormulaScope& scope) {
    const Stripped stripped(text);
    ProgramBuilder builder;
    FormulaGrammar<Pass> grammar(Pass{stripped, scope, builder}, stripped.Start());
    const Pass::Operand whole = grammar.Express();
    if (whole.Failed() || *grammar.Cursor() != '\0') {
        const FormulaToken token = stripped.Token(grammar.Cursor(), *grammar.Cursor() == '\0' ? 0 : 1);
        throw FormulaError{FormulaError::Kind::kSyntax,
                           token.position,
                           token.length,
                           std::string(ExpectedAt(grammar.Cursor())),
                           {},
                           {}};
    }
    const std::size_t first = stripped.places.empty() ? 0 : stripped.places.front();
    return builder.Finish(false, first, stripped.places.empty() ? 0 : stripped.places.back() + 1 - first);
}

}  // namespace qel
