#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "qellib10/platform/export.h"
#include "qellib10/quantity/uncertainty_budget.h"

namespace qel {

/// How the distributions of the inputs are propagated.
struct MonteCarloOptions {
    static constexpr std::size_t kMostTrials = 100'000'000;  ///< they take 8 bytes each

    std::size_t trials = 1'000'000;
    std::uint64_t seed = 1;  ///< the same seed gives the same result
    unsigned threads = 1;    ///< std::thread::hardware_concurrency() for all cores; the result does not depend on it
    double coverageProbability = UncertaintyOptions::kUsualProbability;  ///< between 0 and 1
    std::vector<InputCorrelation> correlations;                          ///< each pair of inputs once
};

/// An interval in which the result is with the coverage probability.
struct CoverageInterval {
    double low = 0.0, high = 0.0;

    friend bool operator==(const CoverageInterval&, const CoverageInterval&) = default;
};

/// What the trials gave.
struct MonteCarloResult {
    double mean = 0.0;
    double uncertainty = 0.0;          ///< standard deviation of the trials
    double coverageProbability = 0.0;  ///< as it was asked for
    CoverageInterval symmetric;        ///< as many trials are below it as above it
    CoverageInterval shortest;         ///< of all that contain as many trials
    double lowError = 0.0;             ///< standard error of the ends of the symmetric one, by the number of trials
    double highError = 0.0;
    std::size_t trials = 0;  ///< that have a result
    /// Where the formula, or one that it needs, is not defined; they are in none of the numbers above.
    std::size_t failed = 0;

    friend bool operator==(const MonteCarloResult&, const MonteCarloResult&) = default;
};

/// The distribution of a result by trials (GUM Supplement 1, JCGM 101): inputs are drawn from their distributions, a
/// common source once for all its inputs, and the formula is evaluated for each trial. It assumes neither that the
/// formula is nearly linear nor that the result is normal, so it checks what PropagateUncertainty assumes.
///
/// An input with finite degrees of freedom is drawn from Student's distribution if its own is normal (JCGM 101 6.4.9).
/// Inputs with correlation coefficients are drawn jointly normal (6.4.8). Threads have ended when it returns; where one
/// cannot be started the others do its work.
/// @param inputs by the positions of the scope; one for each that the formula names
/// @return nothing where PropagateUncertainty refuses the inputs, an option is not valid, less than one trial is
/// outside of the interval, memory is too short, the formula is defined for less than two trials, or a trial is so
/// large that they have no standard deviation (kTooLarge)
QELLIB10_API std::optional<MonteCarloResult> PropagateDistributions(const Formula& formula,
                                                                    std::span<const UncertainInput> inputs,
                                                                    const MonteCarloOptions& options,
                                                                    FormulaError& error);

/// Whether first order is enough for a result, after JCGM 101 clause 8.
struct FirstOrderCheck {
    bool isEnough = false;  ///< both ends of the interval agree within the tolerance
    /// Half of the last digit of the standard uncertainty; at least what rounding in double arithmetic may make of it.
    double tolerance = 0.0;
    double lowDifference = 0.0;   ///< of the lower ends of the intervals, without sign
    double highDifference = 0.0;  ///< of the upper ends
    /// The ends from the trials are known to a fifth of the tolerance (8.2), two standard errors each. Where they are
    /// not, more trials may change what is said here.
    bool isStable = false;
};

/// Compares y +- U with the symmetric interval of the trials.
/// @param digits significant digits of the standard uncertainty that are meaningful: 1 or 2
/// @return nothing for other digits, or where the two are for different coverage probabilities. First order is never
/// enough where a trial has failed for each hundred that are outside of the interval.
QELLIB10_API std::optional<FirstOrderCheck> ValidateFirstOrder(const UncertaintyBudget& budget,
                                                               const MonteCarloResult& trials, int digits = 1);

}  // namespace qel
