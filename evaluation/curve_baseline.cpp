#include "qellib10/evaluation/curve_baseline.h"

#include <cmath>
#include <numeric>

namespace qel {
namespace {

constexpr int kMostPasses = 100;  // until no reading changes its side
constexpr std::size_t kFewestPoints = 3;
constexpr double kAbove = 3;  // times the noise: without that the baseline would be below the noise, not in it
constexpr std::size_t kMostSolutions = 200;

CurveValues Impossible(std::string reason) { return RefusedValues(CurveRefusal::kArgument, std::move(reason)); }

}  // namespace

std::optional<CurveBaseline> CurveBaseline::Of(const CurveData& data, const BaselineOptions& options,
                                               CurveValues& refused) {
    CurveBaseline baseline;
    const std::size_t count = data.size();
    baseline.m_values.assign(count, 0);
    if (options.method == BaselineMethod::kZero) return baseline;
    if (options.method == BaselineMethod::kLine) {
        Line line;
        std::vector<double> design, y, counts;
        line.weights.assign(count, 0);
        const double center = std::midpoint(data.x.front(), data.x.back());
        for (std::size_t i = 0; i < count; ++i) {
            const double x = data.x[i], away = x - center;
            line.basis.insert(line.basis.end(), {1, away});
            const bool isIn = (x >= options.before.first && x <= options.before.last) ||
                              (x >= options.after.first && x <= options.after.last);
            if (!isIn) continue;
            line.weights[i] = data.counts[i];
            design.insert(design.end(), {1, away});
            y.push_back(data.y[i]);
            counts.push_back(data.counts[i]);
        }
        const auto fit = y.size() >= kFewestPoints ? FitLeastSquares(design, 2, y, counts) : std::nullopt;
        if (!fit) {
            refused = RefusedValues(
                CurveRefusal::kTooFewPoints,
                "a straight baseline needs 3 points in its ranges, there are " + std::to_string(y.size()));
            return std::nullopt;
        }
        line.fit = *fit;
        for (std::size_t i = 0; i < count; ++i)
            baseline.m_values[i] = fit->coefficients[0] + fit->coefficients[1] * line.basis[2 * i + 1];
        baseline.m_line = std::move(line);
        return baseline;
    }
    if (!(options.smoothness > 0 && options.smoothness <= kMostSmoothness && options.asymmetry > 0 &&
          options.asymmetry < 0.5)) {
        refused = Impossible("a baseline of smoothness " + NumberInSentence(options.smoothness) + " and asymmetry " +
                             NumberInSentence(options.asymmetry) +
                             " is impossible; the first is above 0 up to 1e12, the second between 0 and 0.5");
        return std::nullopt;
    }
    baseline.m_penalized = std::make_shared<PenalizedBaseline>(data.x, options.smoothness);
    std::vector<double> weights = data.counts, right(count);
    for (int pass = 0;; ++pass) {
        if (pass == kMostPasses || !baseline.m_penalized->SetWeights(weights)) {
            refused =
                RefusedValues(CurveRefusal::kNoFit, "the baseline came to no end: readings change their side of it");
            return std::nullopt;
        }
        for (std::size_t i = 0; i < count; ++i) right[i] = weights[i] * data.y[i];
        baseline.m_values = baseline.m_penalized->Solve(right);
        std::vector<double> next(count);
        for (std::size_t i = 0; i < count; ++i) {
            const bool isAbove = data.y[i] - baseline.m_values[i] > kAbove * data.noise / std::sqrt(data.counts[i]);
            next[i] = data.counts[i] * (isAbove ? options.asymmetry : 1);
        }
        if (next == weights) break;
        weights = std::move(next);
    }
    baseline.m_weights = std::move(weights);
    return baseline;
}

// Of the line: sum_i f_i b_i = f'A (A'WA)^-1 A'W y. Of the other: f'(W + P)^-1 W y; the matrix is symmetric.
std::vector<double> CurveBaseline::Influence(const std::vector<double>& factors) const {
    std::vector<double> influence(factors.size(), 0.0);
    if (m_line) {
        double height = 0, slope = 0;
        for (std::size_t i = 0; i < factors.size(); ++i) {
            height += factors[i];
            slope += factors[i] * m_line->basis[2 * i + 1];
        }
        const LeastSquares& fit = m_line->fit;
        const double first = fit.Covariance(0, 0) * height + fit.Covariance(0, 1) * slope;
        const double second = fit.Covariance(1, 0) * height + fit.Covariance(1, 1) * slope;
        for (std::size_t i = 0; i < factors.size(); ++i)
            influence[i] = m_line->weights[i] * (first + second * m_line->basis[2 * i + 1]);
    } else if (m_penalized) {
        influence = m_penalized->Solve(factors);
        for (std::size_t i = 0; i < factors.size(); ++i) influence[i] *= m_weights[i];
    }
    return influence;
}

double CurveBaseline::Uncertainty(const CurveData& data, std::size_t index) const {
    std::vector<double> factors(data.size(), 0.0);
    factors[index] = 1;
    const std::vector<double> influence = Influence(factors);
    double variance = 0;
    for (std::size_t i = 0; i < influence.size(); ++i) variance += influence[i] * influence[i] / data.counts[i];
    return data.noise * std::sqrt(variance);
}

// Of a baseline by asymmetric least squares each value takes a solution of its own; between some of them its
// uncertainty changes as smoothly as itself.
CurveValues Curve::Baseline(const BaselineOptions& options) const {
    if (m_data->refusal != CurveRefusal::kNone) return RefusedValues(m_data->refusal, m_data->reason);
    CurveValues found;
    const auto baseline = CurveBaseline::Of(*m_data, options, found);
    if (!baseline) return found;
    const std::size_t count = m_data->size(), stride = (count + kMostSolutions - 1) / kMostSolutions;
    double before = 0, after = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (i % stride == 0) {
            before = i == 0 ? baseline->Uncertainty(*m_data, 0) : after;
            after = baseline->Uncertainty(*m_data, std::min(i + stride, count - 1));
        }
        const double t = static_cast<double>(i % stride) / static_cast<double>(stride);
        found.values.push_back({m_data->x[i], baseline->Values()[i], std::lerp(before, after, t)});
    }
    return found;
}

}  // namespace qel
