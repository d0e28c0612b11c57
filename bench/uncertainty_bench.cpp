// Promises: the uncertainty of a formula of 10 inputs to first order is far faster than that of Python's
// `uncertainties`, with the rows of its budget as well, and a million Monte Carlo trials of it on two threads take less
// than 0.2 s and less than numpy's vectorised run. Parts of it that are formulas of their own cost nothing.
//   FirstOrder >= 50 FirstOrderPython
//   Budget >= 30 BudgetPython
//   WithUnits >= 50 FirstOrderPython
//   MonteCarlo:ms <= 200
//   MonteCarlo >= 1 MonteCarloNumpy
//   MonteCarloByParts <= 1.1 MonteCarlo
#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "qellib10/quantity.h"

namespace {

constexpr const char* kFormula = "(A - B) * C * D * E / (F * G) * 1000 + H * I - J";
constexpr int kInputs = 10;

[[noreturn]] void Fail(const char* what) {
    std::fprintf(stderr, "uncertainty_bench: %s\n", what);
    std::abort();
}

double ValueOf(int input) { return 10.0 + input; }
double UncertaintyOf(int input) { return 0.01 * (input + 1); }

struct Example {
    Example() {
        for (int i = 0; i < kInputs; ++i) {
            const std::string name(1, static_cast<char>('A' + i));
            scope.Add(name);
            inputs.push_back({name, ValueOf(i), {qel::UncertaintyComponent::Standard(UncertaintyOf(i)).value()}});
        }
        qel::FormulaError error;
        formula = qel::Formula::Parse(kFormula, scope, error);
        if (!formula) Fail(error.Text(kFormula).c_str());
    }
    double FirstOrder(bool withRows = false) const {
        qel::FormulaError error;
        qel::UncertaintyOptions options;
        options.withRows = withRows;
        const auto budget = qel::PropagateUncertainty(*formula, inputs, options, error);
        return budget ? budget->uncertainty : NAN;
    }
    double ByTrials() const {
        qel::MonteCarloOptions options;
        options.threads = 2;
        qel::FormulaError error;
        const auto result = qel::PropagateDistributions(*formula, inputs, options, error);
        return result ? result->uncertainty : NAN;
    }
    qel::FormulaScope scope;
    std::optional<qel::Formula> formula;
    std::vector<qel::UncertainInput> inputs;
};

// A script that prints the seconds of one run and the standard uncertainty, which has to be near @p expected. What
// Debian's Python has is not in another one's path.
double SecondsOfPython(const std::string& script, double expected, double tolerance) {
    FILE* const python = popen(("/usr/bin/python3 -c '" + script + "'").c_str(), "r");
    double seconds = 0.0, uncertainty = 0.0;
    if (python == nullptr || std::fscanf(python, "%lf %lf", &seconds, &uncertainty) != 2)
        Fail("Python did not run (scripts/install-deps bench)");
    pclose(python);
    if (!(std::abs(uncertainty / expected - 1.0) < tolerance)) Fail("Python's result differs");
    return seconds;
}

void FirstOrder(benchmark::State& state) {
    const Example example;
    for (auto _ : state) benchmark::DoNotOptimize(example.FirstOrder());
}

void Budget(benchmark::State& state) {
    const Example example;
    for (auto _ : state) benchmark::DoNotOptimize(example.FirstOrder(true));
}

// @param result what is done with y
double SecondsOfUncertainties(const std::string& result) {
    const std::string script =
        "import time, timeit\n"
        "from uncertainties import ufloat\n"
        "A, B, C, D, E, F, G, H, I, J = (ufloat(10 + i, 0.01 * (i + 1)) for i in range(10))\n"
        "def run():\n"
        "    y = " +
        std::string(kFormula) + "\n    return " + result +
        "\n"
        "print(min(timeit.repeat(run, number=1000, repeat=3, timer=time.process_time)) / 1000, run()[0])";
    return SecondsOfPython(script, Example().FirstOrder(), 1e-12);
}

// The units were checked once, and cost nothing here: no factor differs from 1.
void WithUnits(benchmark::State& state) {
    const Example example;
    std::string ignored;
    std::vector<qel::Unit> units(example.inputs.size());
    units[0] = units[1] = units[9] = *qel::Unit::Parse("mL", ignored);
    units[7] = units[0];
    qel::FormulaError error;
    const auto bound = qel::QuantityFormula::Bind(*example.formula, units, {}, error);
    if (!bound) Fail(error.Text(kFormula).c_str());
    qel::UncertaintyOptions options;
    options.withRows = false;
    for (auto _ : state) benchmark::DoNotOptimize(bound->Propagate(example.inputs, options, error));
}

void FirstOrderPython(benchmark::State& state) {
    for (auto _ : state) state.SetIterationTime(SecondsOfUncertainties("(y.std_dev,)"));
}

void BudgetPython(benchmark::State& state) {
    for (auto _ : state) state.SetIterationTime(SecondsOfUncertainties("(y.std_dev, y.error_components())"));
}

void MonteCarlo(benchmark::State& state) {
    const Example example;
    const auto start = std::chrono::steady_clock::now();
    for (auto _ : state) benchmark::DoNotOptimize(example.ByTrials());
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    state.counters["ms"] = time.count() / static_cast<double>(state.iterations());
}

// The same trials, each formula after those that it needs.
void MonteCarloByParts(benchmark::State& state) {
    const Example example;
    qel::FormulaSet set(example.scope);
    for (const auto& [name, text] : {std::pair("V", "A - B"), std::pair("N", "V * C * D * E"), std::pair("M", "F * G"),
                                     std::pair("X", "N / M * 1000 + H * I - J")})
        set.Add(name, text);
    if (set.Parse()) Fail("the formulas have a fault");
    qel::MonteCarloOptions options;
    options.threads = 2;
    qel::FormulaError error;
    const auto tried = [&] {
        const auto result = set.Try(set.Count() - 1, example.inputs, options, error);
        return result ? result->uncertainty : NAN;
    };
    if (tried() != example.ByTrials()) Fail("the formulas have other trials");
    for (auto _ : state) benchmark::DoNotOptimize(tried());
}

void MonteCarloNumpy(benchmark::State& state) {
    const std::string script =
        "import time, numpy\n"
        "generator, times = numpy.random.default_rng(1), []\n"
        "for _ in range(5):\n"
        "    start = time.perf_counter()\n"
        "    A, B, C, D, E, F, G, H, I, J = (generator.normal(10 + i, 0.01 * (i + 1), 10**6) for i in range(10))\n"
        "    y = " +
        std::string(kFormula) +
        "\n"
        "    mean, u, ends = y.mean(), y.std(ddof=1), numpy.quantile(y, (0.02275, 0.97725))\n"
        "    times.append(time.perf_counter() - start)\n"
        "print(min(times), u)";
    for (auto _ : state) state.SetIterationTime(SecondsOfPython(script, Example().ByTrials(), 0.01));
}

BENCHMARK(FirstOrder);
BENCHMARK(WithUnits);
BENCHMARK(FirstOrderPython)->UseManualTime()->Iterations(1);
BENCHMARK(Budget);
BENCHMARK(BudgetPython)->UseManualTime()->Iterations(1);
BENCHMARK(MonteCarlo)->UseRealTime();
BENCHMARK(MonteCarloByParts)->UseRealTime();
BENCHMARK(MonteCarloNumpy)->UseManualTime()->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
