// The tables of docs/formulas.md say what is true: each row is carried out.
#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>

#include "../support/test.h"
#include "decimal_words.h"
#include "qellib10/quantity.h"

namespace {

using qel::Decimal;
using qel::ExactResult;
using qel::Formula;
using qel::FormulaError;
using qel::Reading;

using Row = std::map<std::string, std::string>;  // by the head of the column
using Table = std::vector<Row>;

// Code without its marks, other words as they are.
std::string Plain(const std::string& cell) {
    const std::size_t first = cell.find_first_not_of(' ');
    if (first == std::string::npos) return {};
    const std::string text = cell.substr(first, cell.find_last_not_of(' ') + 1 - first);
    return text.size() > 1 && text.front() == '`' && text.find('`', 1) == text.size() - 1
               ? text.substr(1, text.size() - 2)
               : text;
}

std::vector<std::string> CellsOf(const std::string& line) {
    std::vector<std::string> cells;
    std::istringstream rest(line.substr(1));
    for (std::string cell; std::getline(rest, cell, '|');) cells.push_back(Plain(cell));
    return cells;
}

std::vector<Table> ReadTables() {
    std::ifstream page(QELLIB10_FORMULAS_PAGE);
    std::vector<Table> tables;
    std::vector<std::string> head;
    for (std::string line; std::getline(page, line);) {
        if (!line.starts_with('|')) {
            head.clear();
        } else if (line.starts_with("|-")) {
            tables.emplace_back();
        } else if (head.empty()) {
            head = CellsOf(line);
        } else {
            const std::vector<std::string> cells = CellsOf(line);
            EXPECT_EQ(cells.size(), head.size()) << line;
            Row row;
            for (std::size_t i = 0; i < std::min(cells.size(), head.size()); ++i) row[head[i]] = cells[i];
            tables.back().push_back(row);
        }
    }
    return tables;
}

// The rows of all tables that have these columns.
Table RowsWith(const std::vector<std::string>& columns) {
    static const std::vector<Table> tables = ReadTables();
    Table rows;
    for (const Table& table : tables)
        for (const Row& row : table)
            if (std::ranges::all_of(columns, [&](const std::string& column) { return row.contains(column); }))
                rows.push_back(row);
    EXPECT_FALSE(rows.empty()) << columns.front();
    return rows;
}

std::string At(const Row& row, const std::string& column) {
    const auto found = row.find(column);
    return found != row.end() ? found->second : "";
}

struct Variables {
    Variables() {
        for (const Row& row : RowsWith({"Variable", "Reading"})) {
            scope.Add(At(row, "Variable"));
            readings.push_back(*Reading::OfText(At(row, "Reading")));
            values.push_back(readings.back().value.ToDouble());
        }
    }
    bool AreNumbers(const Formula& formula) const {
        return std::ranges::all_of(formula.Variables(), [&](std::size_t at) { return readings[at].IsValue(); });
    }
    qel::FormulaScope scope;
    std::vector<Reading> readings;
    std::vector<double> values;
};

using Parser = std::optional<Formula> (*)(std::string_view, const qel::FormulaScope&, FormulaError&);

// What a row says of a formula: its result or its error.
struct Answer {
    std::string text, cause;
    bool isInexact = false;
    FormulaError::Kind kind = FormulaError::Kind::kSyntax;
};

Answer ErrorOf(const Variables& variables, const std::string& text, const FormulaError& error) {
    return {error.Text(text), error.cause ? variables.scope.Name(*error.cause) : "", false, error.kind};
}

// In double a formula of numbers has the same result.
void CheckDouble(const Variables& variables, const Formula& formula, const Answer& exact,
                 const std::optional<ExactResult>& result) {
    if (!variables.AreNumbers(formula)) return;
    FormulaError error;
    const std::optional<double> value = formula.Evaluate(variables.values, error);
    EXPECT_EQ(value.has_value(), result.has_value()) << formula.Text();
    if (!value || !result) {
        EXPECT_EQ(error.Text(formula.Text()), exact.text);
    } else if (result->kind == ExactResult::Kind::kValue) {
        const double expected = result->value.ToDouble();
        EXPECT_LE(std::abs(*value - expected), 1e-14 * std::abs(expected)) << formula.Text();
    } else if (!exact.isInexact) {
        EXPECT_EQ(*value != 0.0 ? "yes" : "no", exact.text) << formula.Text();
    }
}

Answer AnswerTo(Parser parser, const std::string& text, qel::LimitSubstitution substitution) {
    static const Variables variables;
    FormulaError error;
    const std::optional<Formula> formula = parser(text, variables.scope, error);
    if (!formula) return ErrorOf(variables, text, error);
    const std::optional<ExactResult> result = formula->EvaluateExactly(variables.readings, {substitution}, error);
    Answer answer = ErrorOf(variables, text, error);
    if (result) {
        answer.text = result->Text();
        answer.cause = result->cause ? variables.scope.Name(*result->cause) : "";
        answer.isInexact = result->flags.isInexact && result->kind != ExactResult::Kind::kNotDeterminable;
    }
    CheckDouble(variables, *formula, answer, result);
    return answer;
}

const std::array<std::string, 4> kWays = {"Half even", "Half away from zero", "Truncation", "Away from zero"};

std::string Rounded(const Row& row, std::string how, const Decimal& value, const std::string& to) {
    how[0] = static_cast<char>(how[0] - 'A' + 'a');
    const auto rule = qel::RoundingRule::OfName(how + ", " + to);
    EXPECT_TRUE(rule) << how << At(row, "To");
    return rule ? rule->Round(value).rounded.Text() : "";
}
std::string Rounded(const Row& row, const std::string& how) {
    return Rounded(row, how, DecimalOf(At(row, "Value")), At(row, "To"));
}

// Ways of rounding that the library does not have, made of those that it has.
using WrongWay = std::function<std::string(const Row&, const std::string& how)>;

bool IsNegative(const Row& row) { return At(row, "Value").front() == '-'; }

bool IsHalf(const Row& row) {
    qel::DecimalFlags flags;
    const Decimal value = DecimalOf(At(row, "Value")), below = DecimalOf(At(row, "Truncation"));
    return below.IsFinite() && below != value &&
           Add(value, value, flags) == Add(below, DecimalOf(At(row, "Away from zero")), flags);
}

// Of a half: away from zero, or toward zero.
std::string OfHalf(const Row& row, bool isAway) {
    if (!IsHalf(row)) return At(row, "Half even");
    return At(row, isAway ? "Away from zero" : "Truncation");
}

const std::map<std::string, WrongWay> kWrongWays = {
    {"floor", [](const Row& row, auto) { return At(row, IsNegative(row) ? "Away from zero" : "Truncation"); }},
    {"ceiling", [](const Row& row, auto) { return At(row, IsNegative(row) ? "Truncation" : "Away from zero"); }},
    {"half up", [](const Row& row, auto) { return OfHalf(row, !IsNegative(row)); }},
    {"half toward zero", [](const Row& row, auto) { return OfHalf(row, false); }},
    {"half odd", [](const Row& row, auto) { return OfHalf(row, At(row, "Half even") == At(row, "Truncation")); }},
    {"in binary",
     [](const Row& row, const std::string& how) {
         return Rounded(row, how, Decimal::OfDouble(DecimalOf(At(row, "Value")).ToDouble()), At(row, "To"));
     }},
};

// First to one place more.
std::string RoundedTwice(const Row& row, const std::string& how) {
    std::istringstream to(At(row, "To"));
    int places = 0;
    if (!(to >> places) || At(row, "To").find("decimal") == std::string::npos) return At(row, how);
    const std::string first =
        Rounded(row, how, DecimalOf(At(row, "Value")), std::to_string(places + 1) + " decimal places");
    return Rounded(row, how, DecimalOf(first), At(row, "To"));
}

}  // namespace

TEST(FormulasPage, FormulasHaveTheseResults) {
    for (const Row& row : RowsWith({"Formula", "Result"})) {
        const std::string text = At(row, "Formula");
        const auto substitution = qel::LimitSubstitutionOf(At(row, "Substitute"));
        const Answer answer = AnswerTo(Formula::Parse, text, substitution.value_or(qel::LimitSubstitution::kNone));
        EXPECT_EQ(answer.text, At(row, "Result")) << text;
        if (row.contains("Because of")) {
            EXPECT_EQ(answer.cause, At(row, "Because of")) << text;
        }
        EXPECT_EQ(answer.isInexact ? "yes" : "", At(row, "Inexact")) << text;
    }
}

TEST(FormulasPage, OlderFormulasMeanWhatTheyMeant) {
    for (const Row& row : RowsWith({"Formula", "By `Kept`", "By `Parse`"})) {
        const std::string text = At(row, "Formula");
        const auto shown = [&](Parser parser, const std::string& expected) {
            const Answer answer = AnswerTo(parser, text, qel::LimitSubstitution::kNone);
            if (expected == "not valid" && answer.kind == FormulaError::Kind::kSyntax)
                return answer.text.starts_with("the formula is not valid") ? expected : answer.text;
            return expected == "unknown" && answer.kind == FormulaError::Kind::kName ? expected : answer.text;
        };
        EXPECT_EQ(shown(Formula::Kept, At(row, "By `Kept`")), At(row, "By `Kept`")) << text;
        EXPECT_EQ(shown(Formula::Parse, At(row, "By `Parse`")), At(row, "By `Parse`")) << text;
    }
}

TEST(FormulasPage, NamesAllConstants) {
    std::string known, shown;
    for (const qel::FormulaConstant& constant : qel::FormulaConstants())
        known += "const." + std::string(constant.name) + ' ' + std::string(constant.value) + ' ' +
                 std::string(constant.uncertainty) + ' ' + std::string(constant.unit) + ' ' +
                 std::string(constant.source) + '\n';
    for (const Row& row : RowsWith({"Constant"}))
        shown += At(row, "Constant") + ' ' + At(row, "Value") + ' ' + At(row, "Standard uncertainty") + ' ' +
                 At(row, "Unit") + ' ' + At(row, "Source") + '\n';
    EXPECT_EQ(shown, known);
}

TEST(FormulasPage, ValuesAreRoundedSo) {
    for (const Row& row : RowsWith({"Value", "To"}))
        for (const std::string& how : kWays) EXPECT_EQ(Rounded(row, how), At(row, how)) << At(row, "Value");
}

// A fault in a rule makes it another one; some row has another result then, of each kind of rule where both have it.
TEST(FormulasPage, RowsTellWrongWaysOfRoundingFromTheRightOnes) {
    const Table rows = RowsWith({"Value", "To"});
    const auto isSeen = [&](const std::string& how, const char* kind, const WrongWay& wrong) {
        return std::ranges::any_of(rows, [&](const Row& row) {
            return At(row, "To").find(kind) != std::string::npos && wrong(row, how) != At(row, how);
        });
    };
    for (const std::string& how : kWays) {
        for (const std::string& other : kWays)
            for (const char* kind : {"decimal places", "significant digits", "multiples"}) {
                const bool isOther = isSeen(how, kind, [&](const Row& row, auto) { return At(row, other); });
                EXPECT_EQ(isOther, how != other) << how << " and " << other << ", " << kind;
            }
        for (const auto& [name, wrong] : kWrongWays) EXPECT_TRUE(isSeen(how, "", wrong)) << how << " and " << name;
        EXPECT_EQ(isSeen(how, "", RoundedTwice), how.starts_with("Half")) << how << ", twice";
    }
}
