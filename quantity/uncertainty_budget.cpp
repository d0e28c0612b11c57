#include "qellib10/quantity/uncertainty_budget.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <memory_resource>
#include <vector>

#include "qellib10/platform/statistics/student.h"
#include "qellib10/quantity/formula_access.h"
#include "qellib10/quantity/formula_gradient.h"
#include "qellib10/quantity/uncertain_constants.h"
#include "qellib10/quantity/uncertainty_propagation.h"
#include "qellib10/quantity/uncertainty_sources.h"

namespace qel {
namespace {

using Kind = FormulaError::Kind;

// How far each source moves the result, and what they make together; relative to the largest of them, so that no square
// is too large or too small.
struct Combination {
    Combination(const UncertaintySources& sources, std::span<const double> partials, std::pmr::memory_resource* memory)
        : bySource(sources.Sources().size(), memory) {
        constexpr double kRounding = 16 * std::numeric_limits<double>::epsilon();  // of parts that cancel
        std::pmr::vector<double> sizes(bySource.size(), memory);
        for (const auto& [source, slot, uncertainty] : sources.Shares()) {
            const double contribution = partials[slot] * uncertainty;
            bySource[source] += contribution;
            sizes[source] += std::abs(contribution);
            hasUnderflow |= partials[slot] != 0.0 && uncertainty != 0.0 &&
                            std::abs(contribution) < std::numeric_limits<double>::min();
        }
        for (std::size_t i = 0; i < bySource.size(); ++i)
            if (std::isfinite(sizes[i]) && std::abs(bySource[i]) <= kRounding * sizes[i]) bySource[i] = 0.0;
        for (const double contribution : bySource) scale = std::max(scale, std::abs(contribution));
        if (scale == 0.0) return;
        for (const double contribution : bySource) variance += Square(contribution / scale);
    }

    double Uncertainty() const { return scale * std::sqrt(variance); }

    static double Square(double value) { return value * value; }

    // The covariance of a contribution with the result, as part of the variance.
    double ShareOf(double contribution, std::uint32_t source) const {
        return scale == 0.0 ? 0.0 : (contribution / scale) * (bySource[source] / scale) / variance;
    }

    std::pmr::vector<double> bySource;
    double scale = 0.0;
    double variance = 0.0;  // relative to the square of scale
    bool hasUnderflow = false;
};

// GUM G.2b. A sum that is whole but for rounding is not cut to the number below.
double EffectiveDegreesOfFreedom(const UncertaintySources& sources, const Combination& combination) {
    constexpr double kRounding = 1e-10;
    if (combination.scale == 0.0) return UncertaintyComponent::kInfinite;
    double sum = 0.0;
    for (std::size_t i = 0; i < combination.bySource.size(); ++i) {
        if (std::isinf(sources.Sources()[i].degreesOfFreedom)) continue;
        const double part = Combination::Square(combination.bySource[i] / combination.scale) / combination.variance;
        sum += part * part / sources.Sources()[i].degreesOfFreedom;
    }
    return std::floor(1.0 / sum * (1.0 + kRounding));
}

void AddRows(UncertaintyBudget& budget, const FormulaProgram& program, std::span<const UncertainInput> inputs,
             const UncertaintySources& sources, std::span<const double> partials, const Combination& combination) {
    // Of an input with a correlation coefficient, as a whole.
    std::vector<double> shares(sources.IsCorrelated() ? partials.size() : 0), squares(shares.size());
    if (sources.IsCorrelated()) {
        for (const auto& [source, slot, uncertainty] : sources.Shares())
            shares[slot] += combination.ShareOf(partials[slot] * uncertainty, source);
        for (const auto& each : sources.Components())
            squares[each.slot] = std::hypot(squares[each.slot], each.component->uncertainty);
    }
    budget.rows.reserve(sources.Components().size());
    for (const auto& [component, slot, share] : sources.Components()) {
        const std::size_t position = program.variables[slot];
        const double contribution = partials[slot] * component->uncertainty;
        double part = 0.0;
        if (share != UncertaintySources::kCorrelated) {
            part = combination.ShareOf(contribution, sources.Shares()[share].source);
        } else if (component->uncertainty != 0.0) {
            part = shares[slot] * Combination::Square(component->uncertainty / squares[slot]);
        }
        budget.rows.push_back({position, inputs[position].name, component->source, inputs[position].value,
                               component->uncertainty, component->degreesOfFreedom, partials[slot], contribution,
                               part});
    }
}

[[noreturn]] void Refuse(const char* reason) { throw FormulaError{Kind::kUncertainty, 0, 0, reason, {}, {}}; }

void Expand(UncertaintyBudget& budget, const UncertaintyOptions& options) {
    if (options.coverageFactor) {
        const double k = *options.coverageFactor;
        if (!(k > 0.0 && std::isfinite(k))) Refuse("a coverage factor that is not above 0");
        budget.coverageFactor = k;
        if (budget.degreesOfFreedom)
            budget.coverageProbability = 1.0 - 2.0 * StudentDistribution(-k, *budget.degreesOfFreedom);
    } else {
        if (!(options.coverageProbability > 0.0 && options.coverageProbability < 1.0))
            Refuse("a coverage probability that is not between 0 and 1");
        if (!budget.degreesOfFreedom)
            Refuse("degrees of freedom that a correlation coefficient makes undefined: k has to be given");
        budget.coverageFactor = CoverageFactor(options.coverageProbability, *budget.degreesOfFreedom);
        budget.coverageProbability = options.coverageProbability;
    }
    budget.expandedUncertainty = budget.coverageFactor * budget.uncertainty;
}

// Whether another branch, or the other side of a bend, is within the expanded uncertainty of what decides it.
bool ReachesBend(FormulaGradient& gradient, const UncertaintySources& sources, double k) {
    return std::ranges::any_of(gradient.Bends(), [&](const FormulaGradient::Bend& bend) {
        try {
            const double distance = std::abs(gradient.DifferentiateBend(bend));
            const Combination combination(sources, gradient.Partials(), std::pmr::get_default_resource());
            return distance <= k * combination.Uncertainty();
        } catch (const FormulaError&) {
            return true;  // there is no derivative, so that nobody knows how far it reaches
        }
    });
}

// The distance of the steps of a rounding where it is applied, or 0 where its operand has no uncertainty.
double StepOf(FormulaGradient& gradient, const UncertaintySources& sources, const RoundingRule& rule,
              std::uint32_t operand, double& uncertainty) {
    const double value = gradient.DifferentiateBend({operand, FormulaGradient::kZero});
    uncertainty = Combination(sources, gradient.Partials(), std::pmr::get_default_resource()).Uncertainty();
    double step = 0.0;
    if (uncertainty == 0.0) return step;
    // A value between two steps tells their distance, and one of these is not on a step: both of them on steps are not
    // farther apart than the value is known.
    for (const double beside : {0.0, 0.5, 0.01234567}) {
        const Decimal exact = Decimal::OfDouble(value + beside * uncertainty);
        DecimalFlags ignored;
        const Decimal distance = Subtract(rule.With(DecimalRounding::kAwayFromZero).Round(exact).rounded,
                                          rule.With(DecimalRounding::kTowardZero).Round(exact).rounded, ignored);
        step = std::max(step, distance.Absolute().ToDouble());
    }
    return step;
}

// Whether the steps of a rounding are too large for first order: above the standard uncertainty of what is rounded, or
// their part in the result is considerable, since the rest of it cancels. @p parts gets what they add to the result.
bool HasSteps(FormulaGradient& gradient, const UncertaintySources& sources, const FormulaProgram& program,
              double combined, std::vector<double>& parts) {
    bool isLarge = false;
    double all = 0.0;
    for (const FormulaGradient::Rounding& rounding : gradient.Roundings()) {
        try {
            double uncertainty = 0.0;
            const double step = StepOf(gradient, sources, program.rules[rounding.rule], rounding.operand, uncertainty);
            isLarge |= rounding.isOwn && step > uncertainty;
            parts.push_back(kStepDeviation * step * rounding.derivative);
            all = std::hypot(all, parts.back());
        } catch (const FormulaError&) {
            isLarge = true;  // there is no derivative, so that nobody knows the uncertainty
        }
    }
    return isLarge || all > kConsiderable * combined;
}

// The standard uncertainties of the inputs that have no part in the result to first order, by slot; empty without any.
std::vector<double> WithoutPart(const UncertaintySources& sources, std::span<const double> partials) {
    std::vector<double> uncertainties;
    for (const auto& [source, slot, uncertainty] : sources.Shares()) {
        if (partials[slot] != 0.0 || uncertainty == 0.0) continue;
        uncertainties.resize(partials.size());
        uncertainties[slot] = std::hypot(uncertainties[slot], uncertainty);
    }
    return uncertainties;
}

// Whether one of them has a considerable part beside the values, as x has in x * x at 0. Each value is moved by another
// part of its uncertainty, so that no difference of two stays what it is.
bool HasPartBeside(FormulaGradient& gradient, const UncertaintySources& sources, std::span<const double> withoutPart,
                   double combined) {
    if (withoutPart.empty()) return false;
    std::vector<double> uncertainties(withoutPart.size()), values(sources.Values().begin(), sources.Values().end());
    for (const auto& [source, slot, uncertainty] : sources.Shares())
        uncertainties[slot] = std::hypot(uncertainties[slot], uncertainty);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] += uncertainties[i] * (1.0 - 0.5 * static_cast<double>(i) / static_cast<double>(values.size()));
    try {
        gradient.Evaluate(values, sources.IsUncertain());
    } catch (const FormulaError&) {
        return true;  // there is no derivative, so that nobody knows its part
    }
    for (std::size_t i = 0; i < values.size(); ++i)
        if (std::abs(gradient.Partials()[i] * withoutPart[i]) > kConsiderable * combined) return true;
    return false;
}

UncertaintyBudget Budget(const FormulaProgram& program, std::span<const UncertainInput> inputs,
                         const UncertaintyOptions& options, std::vector<double>& steps) {
    if (program.isTruth) throw FormulaError{Kind::kType, 0, 0, "a number", {}, {}};
    alignas(std::max_align_t) std::array<std::byte, 4096> usual;  // larger programs take memory
    std::pmr::monotonic_buffer_resource memory(usual.data(), usual.size());
    const UncertaintySources sources(program, inputs, options.correlations, &memory);
    FormulaGradient gradient(program, &memory);
    UncertaintyBudget budget;
    budget.value = gradient.Evaluate(sources.Values(), sources.IsUncertain());
    budget.valueError = gradient.Error();
    const Combination combination(sources, gradient.Partials(), &memory);
    if ((gradient.HasUnderflow() || combination.hasUnderflow) && combination.scale < kLeastCertain)
        Refuse("numbers below 1E-308");
    budget.uncertainty = combination.Uncertainty();
    if (!sources.IsCorrelated()) budget.degreesOfFreedom = EffectiveDegreesOfFreedom(sources, combination);
    Expand(budget, options);
    if (!std::isfinite(budget.expandedUncertainty)) throw FormulaError{Kind::kTooLarge, 0, 0, {}, {}, {}};
    if (options.withRows) AddRows(budget, program, inputs, sources, gradient.Partials(), combination);
    // Last: this changes the derivatives.
    const std::vector<double> withoutPart = WithoutPart(sources, gradient.Partials());
    const bool hasSteps = HasSteps(gradient, sources, program, budget.uncertainty, steps);
    budget.isAtKink = hasSteps || ReachesBend(gradient, sources, budget.coverageFactor) ||
                      HasPartBeside(gradient, sources, withoutPart, budget.uncertainty);
    return budget;
}

}  // namespace

std::optional<UncertaintyBudget> PropagateUncertainty(const FormulaProgram& program,
                                                      std::span<const UncertainInput> inputs,
                                                      const UncertaintyOptions& options, FormulaError& error,
                                                      std::vector<double>& steps) {
    return ComputedWithConstants(program, inputs, error,
                                 [&](const FormulaProgram& varied, std::span<const UncertainInput> all) {
                                     return Budget(varied, all, options, steps);
                                 });
}

std::optional<UncertaintyBudget> PropagateUncertainty(const FormulaProgram& program,
                                                      std::span<const UncertainInput> inputs,
                                                      const UncertaintyOptions& options, FormulaError& error) {
    std::vector<double> steps;
    return PropagateUncertainty(program, inputs, options, error, steps);
}

std::optional<UncertaintyBudget> PropagateUncertainty(const Formula& formula, std::span<const UncertainInput> inputs,
                                                      const UncertaintyOptions& options, FormulaError& error) {
    return PropagateUncertainty(ProgramOf(formula), inputs, options, error);
}

}  // namespace qel
