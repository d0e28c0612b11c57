#include "qellib10/curve/step_search.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>

#include "qellib10/curve/cubic_fit.h"
#include "qellib10/curve/median.h"
#include "qellib10/curve/sharp_step.h"

namespace qel {
namespace {

constexpr std::size_t kFewestPoints = 5;
constexpr std::size_t kLongestRun = 500;  // keeps the time for a long curve in bounds
constexpr std::size_t kMostPoints = 500;  // of more, means are searched first
constexpr std::size_t kEndReadings = 7;   // give the direction of a curve
constexpr double kSlopeTolerance = 0.1;   // of the slope
constexpr double kBendCertainty = 4;      // standard errors
constexpr double kOverQuotient = 1.3;     // a fit between uneven steps may overshoot what the readings rise
constexpr double kQuotientNoise = 6;      // in the difference of two readings, deviations of one
constexpr double kUneven = 4;             // a point beyond so many intervals turns the polynomial alone
constexpr std::size_t kShortRun = 9;
constexpr double kAboutAsSteep = 0.9;
constexpr double kSamePlace = 0.25;    // of an interval
constexpr double kNoiseOfMeans = 1.5;  // neighbours are alike after a running median, so their means have more noise

using Span = std::span<const double>;

struct Candidate {
    Step step;
    double scatter = 0;  // of the points about the fit
};

// The slope between the two readings around a place in a run.
double QuotientAt(Span x, Span y, double volume, double& interval) {
    const auto above = std::ranges::upper_bound(x, volume) - x.begin();
    const auto i = static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(above, 1, std::ssize(x) - 1));
    interval = x[i] - x[i - 1];
    return (y[i] - y[i - 1]) / interval;
}

bool IsUneven(Span x) {
    double longest = 0, shortest = x.back() - x.front();
    for (std::size_t i = 1; i < x.size(); ++i) {
        longest = std::max(longest, x[i] - x[i - 1]);
        shortest = std::min(shortest, x[i] - x[i - 1]);
    }
    return x.size() <= kShortRun && longest > kUneven * shortest;
}

std::optional<Candidate> CandidateIn(Span x, Span y, double direction, double noise) {
    const std::optional<CubicFit> fit = CubicFit::Through(x, y);
    if (!fit) return std::nullopt;
    const double volume = fit->Inflection();
    if (!(volume >= x[1] && volume <= x[x.size() - 2])) return std::nullopt;
    if (IsUneven(x)) return std::nullopt;
    const double slope = fit->Slope(volume) * direction;
    if (slope <= 0 || noise * fit->SlopeError(volume) > kSlopeTolerance * slope) return std::nullopt;
    double interval = 0;
    const double quotient = QuotientAt(x, y, volume, interval) * direction;
    if (slope > kOverQuotient * quotient + kQuotientNoise * noise / interval) return std::nullopt;
    const double bend = -fit->ThirdDerivative() * direction;
    if (bend <= 0 || noise * fit->ThirdDerivativeError() * kBendCertainty > bend) return std::nullopt;
    return Candidate{{volume, fit->Value(volume), slope * direction, x.size(),
                      std::max(noise, fit->Scatter()) * fit->InflectionError(), 0},
                     fit->Scatter()};
}

std::vector<Candidate> Candidates(const CurvePoints& points, double direction, double noise) {
    std::vector<Candidate> candidates;
    const std::size_t count = points.x.size();
    const std::size_t longest = std::clamp(count / 2, kFewestPoints, kLongestRun);
    for (std::size_t length = kFewestPoints; length <= longest; length += std::max<std::size_t>(1, length / 8)) {
        for (std::size_t i = 0; i + length <= count; ++i) {
            const auto found =
                CandidateIn(Span(points.x).subspan(i, length), Span(points.y).subspan(i, length), direction, noise);
            if (found) candidates.push_back(*found);
        }
    }
    return candidates;
}

// The longer the run, the more a polynomial overshoots beside the inflection of a smooth curve; so where short runs are
// sure, and differ from the steepest by more than half an interval, they are right.
Step WithoutOvershoot(const std::vector<Candidate>& candidates, const Step& steepest) {
    const Step* shortest = &steepest;
    for (const auto& [step, scatter] : candidates) {
        const bool isAsSteep = std::abs(step.slope) >= kAboutAsSteep * std::abs(steepest.slope);
        const bool isBetter = step.points < shortest->points ||
                              (step.points == shortest->points && std::abs(step.slope) > std::abs(shortest->slope));
        if (isAsSteep && isBetter && IsSure(step)) shortest = &step;
    }
    return std::abs(shortest->volume - steepest.volume) > steepest.interval / 2 ? *shortest : steepest;
}

std::optional<Step> SearchCubics(const CurvePoints& points, double direction, double noise) {
    std::vector<Candidate> candidates = Candidates(points, direction, noise);
    for (Candidate& candidate : candidates) candidate.step.interval = IntervalAt(points.x, candidate.step.volume);
    const auto steepness = [](const Candidate& candidate) { return std::abs(candidate.step.slope); };
    const auto steepest = std::ranges::max_element(candidates, {}, steepness);
    if (steepest == candidates.end()) return std::nullopt;
    Step best = steepest->step;
    if (IsSure(best)) return WithoutOvershoot(candidates, best);
    for (const Candidate& other : candidates) {
        const bool isAsSteep = steepness(other) >= kAboutAsSteep * steepness(*steepest);
        if (isAsSteep && other.scatter <= noise && other.step.error < best.error) best = other.step;
    }
    return best;
}

std::optional<Step> SearchAll(const CurvePoints& points, double direction, double noise) {
    const std::optional<Step> cubic = SearchCubics(points, direction, noise);
    const std::optional<Step> sharp = SharpStep(points, direction, noise);
    if (!cubic || !sharp) return cubic;
    const bool isSame = std::abs(cubic->volume - sharp->volume) <= kSamePlace * sharp->interval;
    if (IsSure(*sharp)) return isSame && IsSure(*cubic) ? cubic : sharp;
    Step unsure = *cubic;
    if (!isSame && std::isinf(sharp->error)) unsure.error = sharp->error;
    return unsure;
}

// The points in which the runs of a search through means lie.
CurvePoints Around(const CurvePoints& points, double volume, std::size_t reach) {
    const auto at = static_cast<std::size_t>(std::ranges::lower_bound(points.x, volume) - points.x.begin());
    const std::size_t first = at - std::min(at, reach), last = std::min(points.x.size(), at + reach);
    const auto part = [&](const std::vector<double>& values) {
        return std::vector<double>(values.begin() + static_cast<std::ptrdiff_t>(first),
                                   values.begin() + static_cast<std::ptrdiff_t>(last));
    };
    return {part(points.x), part(points.y)};
}

// Of an instrument whose last digit hardly changes between readings, noise cannot be seen in them.
double RoundingNoise(const CurvePoints& points) {
    double smallest = std::numeric_limits<double>::infinity();
    std::size_t equal = 0;
    for (std::size_t i = 1; i < points.y.size(); ++i) {
        const double difference = std::abs(points.y[i] - points.y[i - 1]);
        if (difference > 0) smallest = std::min(smallest, difference);
        equal += difference == 0 ? 1 : 0;
    }
    const bool isRounded = equal >= points.y.size() / 4 && std::isfinite(smallest);
    return isRounded ? smallest / std::sqrt(12.0) : 0;
}

}  // namespace

double Direction(const std::vector<double>& signal) {
    const auto count = static_cast<std::ptrdiff_t>(std::clamp<std::size_t>(signal.size() / 4, 3, kEndReadings));
    return MedianOf({signal.end() - count, signal.end()}) < MedianOf({signal.begin(), signal.begin() + count}) ? -1 : 1;
}

double IntervalAt(const std::vector<double>& volumes, double volume) {
    const auto above = std::ranges::upper_bound(volumes, volume) - volumes.begin();
    const auto i = static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(above, 1, std::ssize(volumes) - 1));
    return volumes[i] - volumes[i - 1];
}

std::optional<Step> SteepestStep(const CurvePoints& points, double direction, double noise) {
    const std::size_t count = points.x.size();
    if (count < kFewestPoints) return std::nullopt;
    if (count <= kMostPoints) return SearchAll(points, direction, noise);
    noise = std::max(noise, RoundingNoise(points));
    const std::size_t group = (count + kMostPoints - 1) / kMostPoints;
    const CurvePoints means = AverageGroups(points, group);
    std::optional<Step> coarse =
        SearchAll(means, direction, kNoiseOfMeans * noise / std::sqrt(static_cast<double>(group)));
    if (!coarse) return std::nullopt;
    coarse->points *= group;
    const CurvePoints around = Around(points, coarse->volume, std::min(coarse->points, kMostPoints / 2));
    const std::optional<Step> fine = SearchAll(around, direction, noise);
    return fine && IsSure(*fine) ? fine : coarse;
}

}  // namespace qel
