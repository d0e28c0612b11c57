#include "qellib10/quantity/formula_columns.h"

#include <bit>
#include <cmath>
#include <random>

#include "../support/test.h"
#include "qellib10/quantity/formula_access.h"
#include "qellib10/quantity/formula_double.h"

using qel::ColumnFormula;

TEST(FormulaColumns, HaveTheBitsOfPlainEvaluation) {
    qel::FormulaScope scope;
    for (const char* name : {"A", "B", "C"}) scope.Add(name);
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> distribution(-2, 2);
    for (const char* text : {"A",
                             "3",
                             "-A",
                             "A + B * C - 2.5",
                             "A / (B - C) / B",
                             "(A + B) * (B + C) * ((A - B) - (C - 1))",
                             "A / (A - A)",
                             "sqrt(A) + abs(B)",
                             "ln(A) * log10(B) - log2(C)",
                             "exp(500 * A)",
                             "1 / exp(500 * A)",
                             "A ^ B",
                             "0 ^ A",
                             "(A - A) ^ (B - B)",
                             "round(A, 1, half_even) * round(B, 2, away, digits)",
                             "min(A, B, C) - max(C, B, A, 0.1)",
                             "mean(A, B + C, C) + sum(A, B)",
                             "min(A) + const.R",
                             "1e300 * A * 1e300 * B",
                             "A + (B + (C + (A + (B + (C + (A + (B + (C + 1))))))))"}) {
        qel::FormulaError error;
        const auto formula = qel::Formula::Parse(text, scope, error);
        ASSERT_TRUE(formula) << error.Text(text);
        const qel::FormulaProgram& program = ProgramOf(*formula);
        ASSERT_TRUE(ColumnFormula::Fits(program)) << text;
        ColumnFormula columns(program);
        std::vector<double> results(ColumnFormula::kRows), row(3);
        for (std::size_t slot = 0; slot < program.variables.size(); ++slot)
            for (std::size_t i = 0; i < ColumnFormula::kRows; ++i)
                columns.Input(slot)[i] = i == 7 ? 0.0 : i == 9 ? double{INFINITY} : distribution(random);
        std::vector<std::vector<double>> inputs(3, std::vector<double>(ColumnFormula::kRows));
        for (std::size_t slot = 0; slot < program.variables.size(); ++slot)
            inputs[program.variables[slot]].assign(columns.Input(slot), columns.Input(slot) + ColumnFormula::kRows);
        columns.Evaluate(results.data());
        for (std::size_t i = 0; i < ColumnFormula::kRows; ++i) {
            for (std::size_t position = 0; position < 3; ++position) row[position] = inputs[position][i];
            const std::optional<double> expected = EvaluatePlainly(program, row, error);
            EXPECT_EQ(std::isnan(results[i]), !expected) << text << " " << i;
            EXPECT_EQ(std::bit_cast<std::uint64_t>(results[i]),
                      std::bit_cast<std::uint64_t>(expected.value_or(results[i])))
                << text;
        }
    }
}
