// Promises: checking and calculating a typical formula from its text is much faster than parsing and evaluating it with
// muParser, and hardly slower with 512 variables in the list than with 8.
//   Formula/* >= 30 FormulaPeer/*
//   Formula/512 <= 1.2 Formula/8
#include <benchmark/benchmark.h>
#include <muParser.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "qellib10/calc/qw_calc.h"

namespace {

// 8 variables, 57 characters.
constexpr const char* kFormula = "(VOL-BLANK)*CONC*FACTOR*MW/(SAMPLE*PURITY)*1000+OFFSET*.5";
constexpr const char* kNames[] = {"VOL", "BLANK", "CONC", "FACTOR", "MW", "SAMPLE", "PURITY", "OFFSET"};

// The variables of the formula are spread over the list.
std::vector<std::string> Names(int count) {
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i) {
        const int spread = count / 8;
        names.push_back(i % spread == 0 ? kNames[i / spread] : "VARIABLE" + std::to_string(i));
    }
    return names;
}

double ValueOf(int index) { return 1.0 + 0.37 * index; }

CCalcVariableList ListOf(const std::vector<std::string>& names) {
    CCalcVariableList list;
    for (const std::string& name : names) {
        CCalcVariable variable;
        variable.m_szName = name.c_str();
        variable.m_dValue = ValueOf(list.GetVariableCount());
        list.AddVariableData(variable);
    }
    return list;
}

double Checked(CQWCalc& calc) {
    double result = 0.0;
    if (calc.CheckCalcFormula("", kFormula) == 0 || calc.ConcCalculation(kFormula, &result) == 0) std::abort();
    return result;
}

double Parsed(mu::Parser& parser) {
    parser.SetExpr(kFormula);
    return parser.Eval();
}

// Both sides with the same variables, after checking that their results agree.
struct Sides {
    explicit Sides(int count) : names(Names(count)), values(names.size()) {
        calc.SetCalcVarList(ListOf(names));
        for (std::size_t i = 0; i < names.size(); ++i) {
            values[i] = ValueOf(static_cast<int>(i));
            parser.DefineVar(names[i], &values[i]);
        }
        if (std::abs(Checked(calc) - Parsed(parser)) > 1e-9) {
            std::fputs("calc_bench: the results differ\n", stderr);
            std::abort();
        }
    }

    std::vector<std::string> names;
    std::vector<double> values;
    CQWCalc calc;
    mu::Parser parser;
};

void Formula(benchmark::State& state) {
    Sides sides(static_cast<int>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(Checked(sides.calc));
}

void FormulaPeer(benchmark::State& state) {
    Sides sides(static_cast<int>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(Parsed(sides.parser));
}

BENCHMARK(Formula)->Arg(8)->Arg(512);
BENCHMARK(FormulaPeer)->Arg(8)->Arg(512);

}  // namespace

BENCHMARK_MAIN();
