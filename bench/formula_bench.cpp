// Promises: a formula that is parsed once is evaluated faster than muParser's bytecode, also with exact decimals faster
// than Python's decimal does and about as fast as bare calls of decNumber; parsing, which keeps more, costs a few times
// the older check, and a look-up does not depend on the number of variables.
//   EvaluateDouble >= 2 EvaluateDoublePeer
//   EvaluateExact >= 0.7 EvaluateExactBare
//   EvaluateExact >= 1.5 EvaluateExactPython
//   ParseKept >= 0.25 ParsePeer
//   Parse >= 0.2 ParsePeer
//   LookUp/100000 <= 1.2 LookUp/8
#include <benchmark/benchmark.h>
#include <muParser.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "qellib10/calc/qw_calc.h"
#include "qellib10/quantity.h"

#define DECNUMDIGITS 34
#include <qellib10/decnumber/decNumber.h>

namespace {

// 8 variables, 57 characters.
constexpr const char* kFormula = "(VOL-BLANK)*CONC*FACTOR*MW/(SAMPLE*PURITY)*1000+OFFSET*.5";
constexpr const char* kNames[] = {"VOL", "BLANK", "CONC", "FACTOR", "MW", "SAMPLE", "PURITY", "OFFSET"};
constexpr const char* kTexts[] = {"16.519", "0.025", "0.1002", "1.0034", "204.2212", "0.5013", "0.9995", "0.02"};

[[noreturn]] void Fail(const char* what) {
    std::fprintf(stderr, "formula_bench: %s\n", what);
    std::abort();
}

qel::FormulaScope ScopeOf(int count) {
    qel::FormulaScope scope;
    for (const char* name : kNames) scope.Add(name);
    for (int i = static_cast<int>(std::size(kNames)); i < count; ++i) scope.Add("VARIABLE" + std::to_string(i));
    return scope;
}

qel::Formula Parsed() {
    qel::FormulaError error;
    const std::optional<qel::Formula> formula = qel::Formula::Parse(kFormula, ScopeOf(8), error);
    if (!formula) Fail(error.Text(kFormula).c_str());
    return *formula;
}

struct Peer {
    Peer() {
        for (std::size_t i = 0; i < std::size(kNames); ++i) {
            values[i] = std::strtod(kTexts[i], nullptr);
            parser.DefineVar(kNames[i], &values[i]);
        }
        parser.SetExpr(kFormula);
        parser.Eval();  // makes the bytecode
    }
    std::array<double, 8> values = {};
    mu::Parser parser;
};

void EvaluateDouble(benchmark::State& state) {
    const qel::Formula formula = Parsed();
    Peer peer;
    qel::FormulaError error;
    if (std::abs(formula.Evaluate(peer.values, error).value() - peer.parser.Eval()) > 1e-9) Fail("the results differ");
    for (auto _ : state) {
        benchmark::DoNotOptimize(peer.values);
        benchmark::DoNotOptimize(formula.Evaluate(peer.values, error));
    }
}

void EvaluateDoublePeer(benchmark::State& state) {
    Peer peer;
    for (auto _ : state) {
        benchmark::DoNotOptimize(peer.values);
        benchmark::DoNotOptimize(peer.parser.Eval());
    }
}

std::vector<qel::Reading> Readings() {
    std::vector<qel::Reading> readings;
    for (const char* text : kTexts) readings.push_back(*qel::Reading::OfText(text));
    return readings;
}

std::string ExactText() {
    qel::FormulaError error;
    return Parsed().EvaluateExactly(Readings(), {}, error)->Text();
}

void EvaluateExact(benchmark::State& state) {
    const qel::Formula formula = Parsed();
    const std::vector<qel::Reading> readings = Readings();
    qel::FormulaError error;
    for (auto _ : state) benchmark::DoNotOptimize(formula.EvaluateExactly(readings, {}, error));
}

// The same operations, called one after the other.
void EvaluateExactBare(benchmark::State& state) {
    decContext context = {34, 6144, -6143, DEC_ROUND_HALF_EVEN, 0, 0, 1};
    std::array<decNumber, 8> values;
    for (std::size_t i = 0; i < values.size(); ++i) decNumberFromString(&values[i], kTexts[i], &context);
    decNumber thousand, half, result, divisor, offset;
    decNumberFromString(&thousand, "1000", &context);
    decNumberFromString(&half, ".5", &context);
    for (auto _ : state) {
        benchmark::DoNotOptimize(values);
        decNumberSubtract(&result, &values[0], &values[1], &context);
        for (std::size_t i = 2; i < 5; ++i) decNumberMultiply(&result, &result, &values[i], &context);
        decNumberMultiply(&divisor, &values[5], &values[6], &context);
        decNumberDivide(&result, &result, &divisor, &context);
        decNumberMultiply(&result, &result, &thousand, &context);
        decNumberMultiply(&offset, &values[7], &half, &context);
        decNumberAdd(&result, &result, &offset, &context);
        benchmark::DoNotOptimize(result);
    }
    char text[64];
    if (decNumberToString(&result, text) != ExactText()) Fail("decNumber's result differs");
}

// Python reports the nanoseconds of one evaluation, and its result.
void EvaluateExactPython(benchmark::State& state) {
    std::string script = "import decimal, timeit\ndecimal.getcontext().prec = 34\n";
    for (std::size_t i = 0; i < std::size(kNames); ++i)
        script += std::string(kNames[i]) + " = decimal.Decimal('" + kTexts[i] + "')\n";
    script +=
        "code = compile('(VOL-BLANK)*CONC*FACTOR*MW/(SAMPLE*PURITY)*K+OFFSET*H', '', 'eval')\n"
        "K = decimal.Decimal(1000)\nH = decimal.Decimal('.5')\nvalues = globals()\n"
        "def run():\n    return (VOL-BLANK)*CONC*FACTOR*MW/(SAMPLE*PURITY)*K+OFFSET*H\n"
        "print(min(timeit.repeat(run, number=100000, repeat=3)) / 100000, run())";
    for (auto _ : state) {
        FILE* const python = popen(("python3 -c \"" + script + "\"").c_str(), "r");
        double seconds = 0.0;
        char text[64] = {};
        if (python == nullptr || std::fscanf(python, "%lf %63s", &seconds, text) != 2) Fail("python3 did not run");
        pclose(python);
        if (text != ExactText()) Fail("Python's result differs");
        state.SetIterationTime(seconds);
    }
}

void Parse(benchmark::State& state) {
    const qel::FormulaScope scope = ScopeOf(8);
    qel::FormulaError error;
    for (auto _ : state) benchmark::DoNotOptimize(qel::Formula::Parse(kFormula, scope, error));
}

void ParseKept(benchmark::State& state) {
    const qel::FormulaScope scope = ScopeOf(8);
    qel::FormulaError error;
    for (auto _ : state) benchmark::DoNotOptimize(qel::Formula::Kept(kFormula, scope, error));
}

void ParsePeer(benchmark::State& state) {
    CCalcVariableList list;
    for (const char* name : kNames) {
        CCalcVariable variable;
        variable.m_szName = name;
        list.AddVariableData(variable);
    }
    CQWCalc calculator;
    calculator.SetCalcVarList(list);
    for (auto _ : state) benchmark::DoNotOptimize(calculator.CheckCalcFormula("", kFormula));
}

void LookUp(benchmark::State& state) {
    const qel::FormulaScope scope = ScopeOf(static_cast<int>(state.range(0)));
    for (auto _ : state)
        for (const char* name : kNames) benchmark::DoNotOptimize(scope.Find(name));
}

BENCHMARK(EvaluateDouble);
BENCHMARK(EvaluateDoublePeer);
BENCHMARK(EvaluateExact);
BENCHMARK(EvaluateExactBare);
BENCHMARK(EvaluateExactPython)->UseManualTime()->Iterations(1);
BENCHMARK(ParseKept);
BENCHMARK(Parse);
BENCHMARK(ParsePeer);
BENCHMARK(LookUp)->Arg(8)->Arg(100'000);

}  // namespace

BENCHMARK_MAIN();
