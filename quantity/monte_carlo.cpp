#include "qellib10/quantity/monte_carlo.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <cmath>
#include <new>
#include <system_error>
#include <thread>

#include "qellib10/quantity/formula_access.h"
#include "qellib10/quantity/trial_plan.h"
#include "qellib10/quantity/trial_statistics.h"
#include "qellib10/quantity/uncertain_constants.h"
#include "qellib10/quantity/uncertainty_propagation.h"

namespace qel {
namespace {

using Kind = FormulaError::Kind;

[[noreturn]] void Refuse(const char* reason) { throw FormulaError{Kind::kUncertainty, 0, 0, reason, {}, {}}; }

// All trials, a row of blocks at a time to each thread.
std::vector<double> RunTrials(const TrialPlan& plan, std::size_t trials, unsigned threads) {
    constexpr std::size_t kBlocksAtOnce = 16;
    constexpr std::size_t kMostThreads = 256;
    const std::size_t blocks = (trials + TrialPlan::kRows - 1) / TrialPlan::kRows;
    const std::size_t turns = (blocks + kBlocksAtOnce - 1) / kBlocksAtOnce;
    const std::size_t workers = std::clamp<std::size_t>(threads, 1, std::min(turns, kMostThreads));
    std::vector<double> results(blocks * TrialPlan::kRows);
    std::vector<TrialPlan::Workspace> spaces(workers, TrialPlan::Workspace(plan));  // all memory before any thread
    std::atomic<std::size_t> next = 0;
    std::atomic<bool> isOutOfMemory = false;
    const auto work = [&](TrialPlan::Workspace& space) {
        try {
            for (std::size_t turn = next++; turn < turns && !isOutOfMemory; turn = next++) {
                const std::size_t end = std::min((turn + 1) * kBlocksAtOnce, blocks);
                for (std::size_t block = turn * kBlocksAtOnce; block < end; ++block)
                    space.Run(block, &results[block * TrialPlan::kRows]);
            }
        } catch (const std::bad_alloc&) {
            isOutOfMemory = true;
        }
    };
    {
        std::vector<std::jthread> others;
        others.reserve(workers - 1);
        try {
            while (others.size() + 1 < workers) others.emplace_back(work, std::ref(spaces[others.size() + 1]));
        } catch (const std::system_error&) {  // the system has no more threads; those that there are do the work
        }
        work(spaces[0]);
    }
    if (isOutOfMemory) throw std::bad_alloc();
    results.resize(trials);
    return results;
}

MonteCarloResult Run(const FormulaProgram& program, std::span<const UncertainInput> inputs,
                     const MonteCarloOptions& options) {
    if (program.isTruth) throw FormulaError{Kind::kType, 0, 0, "a number", {}, {}};
    const double probability = options.coverageProbability;
    if (!(probability > 0.0 && probability < 1.0)) Refuse("a coverage probability that is not between 0 and 1");
    if (options.trials > MonteCarloOptions::kMostTrials) Refuse("too many trials");
    const auto refuseTooFew = [&](std::size_t trials) {
        if (TrialsWithin(trials, probability) >= trials) Refuse("too few trials for the coverage probability");
    };
    refuseTooFew(options.trials);
    const UncertaintySources sources(program, inputs, options.correlations);
    const TrialPlan plan(program, sources, options.seed);
    std::vector<double> results = RunTrials(plan, options.trials, options.threads);
    std::erase_if(results, [](double result) { return std::isnan(result); });
    if (results.size() < 2) Refuse("trials for which the formula is not defined");
    refuseTooFew(results.size());
    MonteCarloResult result = StatisticsOf(results, probability);
    if (!std::isfinite(result.mean) || !std::isfinite(result.uncertainty))
        throw FormulaError{Kind::kTooLarge, 0, 0, {}, {}, {}};
    result.failed = options.trials - result.trials;
    return result;
}

// Half of the last of the digits to which the standard uncertainty is meaningful (JCGM 101 7.9.2).
double ToleranceOf(double uncertainty, int digits) {
    std::array<char, 40> text;
    char* const first = text.data();
    char* const end =
        std::to_chars(first, first + text.size(), uncertainty, std::chars_format::scientific, digits - 1).ptr;
    const char* exponent = std::find(first, end, 'e') + 1;
    if (exponent < end && *exponent == '+') ++exponent;
    int power = 0;
    std::from_chars(exponent, end, power);
    return uncertainty > 0.0 ? 0.5 * std::pow(10.0, power - digits + 1) : 0.0;
}

}  // namespace

std::optional<MonteCarloResult> PropagateDistributions(const FormulaProgram& program,
                                                       std::span<const UncertainInput> inputs,
                                                       const MonteCarloOptions& options, FormulaError& error) {
    return ComputedWithConstants(
        program, inputs, error,
        [&](const FormulaProgram& varied, std::span<const UncertainInput> all) { return Run(varied, all, options); });
}

std::optional<MonteCarloResult> PropagateDistributions(const Formula& formula, std::span<const UncertainInput> inputs,
                                                       const MonteCarloOptions& options, FormulaError& error) {
    return PropagateDistributions(ProgramOf(formula), inputs, options, error);
}

std::optional<FirstOrderCheck> ValidateFirstOrder(const UncertaintyBudget& budget, const MonteCarloResult& trials,
                                                  int digits) {
    constexpr double kSameProbability = 1e-5;  // k = 2 has 0.954500
    if (digits < 1 || digits > 2) return {};
    if (budget.coverageProbability &&
        std::abs(*budget.coverageProbability - trials.coverageProbability) > kSameProbability)
        return {};
    FirstOrderCheck check;
    // Trials are computed in double, with other values than those of the budget.
    constexpr double kOtherValues = 8.0;
    check.tolerance = std::max(ToleranceOf(budget.uncertainty, digits), kOtherValues * budget.valueError);
    check.lowDifference = std::abs(budget.value - budget.expandedUncertainty - trials.symmetric.low);
    check.highDifference = std::abs(budget.value + budget.expandedUncertainty - trials.symmetric.high);
    const double outside = (1.0 - trials.coverageProbability) * static_cast<double>(trials.trials);
    check.isEnough = check.lowDifference <= check.tolerance && check.highDifference <= check.tolerance &&
                     static_cast<double>(trials.failed) * 100.0 <= outside;
    check.isStable = 2.0 * std::max(trials.lowError, trials.highError) <= check.tolerance / 5.0;
    return check;
}

}  // namespace qel
