#pragma once

#include <cstddef>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "qellib10/platform/export.h"
#include "qellib10/quantity/formula.h"
#include "qellib10/quantity/uncertainty.h"

namespace qel {

/// How an expanded uncertainty is to be made.
struct UncertaintyOptions {
    static constexpr double kUsualProbability = 0.9545;  ///< k is 2 for infinitely many degrees of freedom

    double coverageProbability = kUsualProbability;  ///< between 0 and 1; not regarded where k is given
    std::optional<double> coverageFactor;            ///< k, above 0
    std::vector<InputCorrelation> correlations;      ///< each pair of inputs once
    bool withRows = true;  ///< false where the numbers of the result are enough; this takes half of the time
};

/// One component of an input in a budget.
struct UncertaintyRow {
    std::size_t input = 0;  ///< by position in the scope; of a constant that is not exact a position after all inputs
    std::string name;       ///< of the input
    std::string source;     ///< of the component
    double value = 0.0;     ///< of the input
    double uncertainty = 0.0;  ///< standard uncertainty, in the unit of the input
    double degreesOfFreedom = UncertaintyComponent::kInfinite;
    double sensitivity = 0.0;   ///< the partial derivative of the result by the input
    double contribution = 0.0;  ///< sensitivity times uncertainty, in the unit of the result, with its sign
    /// Part of the variance of the result. All rows together give 1; one that correlation makes smaller may be below 0.
    double share = 0.0;
};

/// A result with its uncertainty to first order (GUM 5), and where it comes from.
struct QELLIB10_API UncertaintyBudget {
    double value = 0.0;
    double uncertainty = 0.0;  ///< combined standard uncertainty
    /// By Welch-Satterthwaite over the independent sources, cut to a whole number (GUM G.4), or infinite. Not defined,
    /// so nothing, where a correlation coefficient has a part in the result.
    std::optional<double> degreesOfFreedom;
    double coverageFactor = 0.0;       ///< k
    double expandedUncertainty = 0.0;  ///< U = k u
    /// Of the interval value +- U. Where k is given it is Student's for the degrees of freedom, and nothing where these
    /// are not defined.
    std::optional<double> coverageProbability;
    /// The formula bends or takes another branch within the uncertainty: the operands of a comparison differ by no more
    /// than k times the standard uncertainty of their difference, or those of min and max, or abs is as near to 0. Or
    /// an input has no part in the uncertainty here, and one next to here, as x in x * x at 0. Or round has steps above
    /// the standard uncertainty of its argument, or adds to the result more than 0.3 times its uncertainty. First order
    /// is then hardly enough; a Monte Carlo run says more.
    bool isAtKink = false;
    double valueError = 0.0;           ///< at most, of the value by rounding in double arithmetic, to first order
    std::vector<UncertaintyRow> rows;  ///< in the order in which the formula first names the inputs
};

/// The result of a formula with its uncertainty by the law of propagation (GUM 5.1.2, 5.2.2): exact derivatives, and
/// one sum over sources, so that inputs with a common source (one flask, one balance, one burette) are correlated as
/// they are, with no coefficient to guess. Constants that are not exact, such as const.u, have their uncertainties too.
///
/// Rounding in a formula is passed over: round(x, 2) has the uncertainty of x.
/// @param inputs by the positions of the scope; one for each that the formula names
/// @return nothing where the value or a derivative does not exist, a condition is given, an input or option is not
/// valid, or coefficients contradict each other; also where k is missing though a correlation coefficient makes the
/// degrees of freedom undefined, and where the uncertainty is lost in numbers below 1E-308. @p error says what and
/// where.
QELLIB10_API std::optional<UncertaintyBudget> PropagateUncertainty(const Formula& formula,
                                                                   std::span<const UncertainInput> inputs,
                                                                   const UncertaintyOptions& options,
                                                                   FormulaError& error);

}  // namespace qel
