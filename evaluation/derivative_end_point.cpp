#include <array>
#include <cmath>
#include <numeric>

#include "qellib10/evaluation/end_points.h"
#include "qellib10/evaluation/local_fit.h"

namespace qel {
namespace {

constexpr double kClear = 5;         // standard errors
constexpr double kSmallMove = 1e-6;  // of the slope
constexpr double kOfWhole = 3;       // a step is so much steeper than the curve from its first reading to its last

// The steepest point of the range, or why there is none.
struct Steepest {
    std::size_t index = 0;
    CurveValue slope;
    CurveEndPoint refusal;
};

Steepest RefusedSteepest(CurveRefusal refusal, std::string reason) {
    return {0, {}, RefusedEndPoint(refusal, std::move(reason))};
}

// Another place whose slope is the same within its uncertainty. Between the two the curve is clearly less steep.
bool IsSecondStep(const CurveValue& best, const CurveValue& other, double lowestBetween) {
    const double size = std::abs(best.y), otherSize = std::abs(other.y);
    const double noise = std::hypot(best.uncertainty, other.uncertainty);
    return size - otherSize < kClear * noise && otherSize - lowestBetween > kClear * noise;
}

Steepest FindSteepest(const CurveData& data, const EndPointOptions& options) {
    const auto [first, last] = data.In(options.range);
    if (last - first < std::max<std::size_t>(options.degree + 1, 5)) {
        return RefusedSteepest(CurveRefusal::kTooFewPoints,
                               "there are " + PointsInSentence(last - first) + " in the range, " +
                                   std::to_string(std::max<std::size_t>(options.degree + 1, 5)) + " are needed");
    }
    LocalFit fit(data, options.window, options.degree);
    std::vector<CurveValue> slopes(last - first);
    std::size_t best = 0;
    for (std::size_t i = 0; i < slopes.size(); ++i) {
        if (fit.At(first + i, data.x[first + i], 1, slopes[i]) && std::abs(slopes[i].y) > std::abs(slopes[best].y))
            best = i;
    }
    const CurveValue& slope = slopes[best];
    const double whole = std::abs((data.y[last - 1] - data.y[first]) / (data.x[last - 1] - data.x[first]));
    if (!(std::abs(slope.y) > kClear * slope.uncertainty) || std::abs(slope.y) < kOfWhole * whole) {
        return RefusedSteepest(CurveRefusal::kNoPlace,
                               "the curve has no step: it is steepest at " + NumberInSentence(slope.x) + " with " +
                                   NumberInSentence(slope.y) + " +- " + NumberInSentence(slope.uncertainty) +
                                   ", and from end to end its slope is " + NumberInSentence(whole));
    }
    if (best < 2 || best + 2 >= slopes.size()) {
        return RefusedSteepest(CurveRefusal::kNoPlace,
                               "the curve is steepest at an end of the range, at " + NumberInSentence(slope.x));
    }
    for (const int direction : {-1, 1}) {
        double lowest = std::abs(slope.y);
        for (auto i = static_cast<std::ptrdiff_t>(best) + direction; i >= 0 && i < std::ssize(slopes); i += direction) {
            const CurveValue& other = slopes[static_cast<std::size_t>(i)];
            lowest = std::min(lowest, std::abs(other.y));
            const bool isFar =
                std::abs(i - static_cast<std::ptrdiff_t>(best)) > static_cast<std::ptrdiff_t>(options.window);
            if (isFar && other.y * slope.y > 0 && IsSecondStep(slope, other, lowest)) {
                return RefusedSteepest(CurveRefusal::kSeveralPlaces,
                                       "the curve is as steep at " + NumberInSentence(other.x) + " as at " +
                                           NumberInSentence(slope.x) + "; choose a range with one of them");
            }
        }
    }
    return {first + best, slope, {}};
}

CurveEndPoint Place(const CurveData& data, LocalFit& fit, std::size_t index, double place, double uncertainty) {
    const std::size_t before = index - (data.x[index] > place && index > 0 ? 1 : 0);
    if (IsPause(data, before) && place > data.x[before]) {
        return RefusedEndPoint(CurveRefusal::kPause, "nothing was measured at the end point, between " +
                                                         NumberInSentence(data.x[before]) + " and " +
                                                         NumberInSentence(data.x[before + 1]));
    }
    CurveEndPoint found;
    CurveValue signal;
    if (fit.At(index, place, 0, signal)) found.signal = signal.y;
    found.value = place;
    found.uncertainty = uncertainty;
    found.degreesOfFreedom = data.noiseDegrees;
    return found;
}

// A zero of the second derivative, and its uncertainty by noise.
struct Zero {
    std::size_t index = 0;  // of the point that it was found by
    double place = 0, noise = 0;
};

// The top of the parabola through the steepest slope and its neighbours.
std::optional<Zero> TopOfSlopes(const CurveData& data, LocalFit& fit, std::size_t index) {
    const auto [first, last] = data.PartOf(index);
    if (index < first + 1 || index + 1 >= last) return std::nullopt;
    const std::span<const double> x = std::span(data.x).subspan(index - 1, 3);
    std::array<double, 3> slopes{};
    for (std::size_t k = 0; k < 3; ++k) {
        CurveValue slope;
        if (!fit.At(index - 1 + k, x[k], 1, slope)) return std::nullopt;
        slopes[k] = slope.y;
    }
    const auto top = [&](const std::array<double, 3>& s) {
        const double before = (s[1] - s[0]) / (x[1] - x[0]), after = (s[2] - s[1]) / (x[2] - x[1]);
        const double bend = (after - before) / (x[2] - x[0]);
        return std::midpoint(x[0], x[1]) - before / (2 * bend);
    };
    const double place = top(slopes), size = std::ranges::max(slopes, {}, [](double s) { return std::abs(s); });
    std::array<double, 3> rates{};
    for (std::size_t k = 0; k < 3; ++k) {
        std::array<double, 3> moved = slopes;
        moved[k] += kSmallMove * size;
        rates[k] = (top(moved) - place) / (kSmallMove * size);
    }
    if (!(place >= x[0] && place <= x[2])) return std::nullopt;
    return Zero{index, place, fit.NoiseOf(index - 1, rates, 1)};
}

// Between the two points nearest to the steepest one where the signs differ.
std::optional<Zero> ZeroBetween(const CurveData& data, LocalFit& fit, std::size_t index, double slope) {
    const auto [partFirst, partLast] = data.PartOf(index);
    const auto bendAt = [&](std::size_t i) {
        CurveValue bend{0, NAN, 0};
        fit.At(i, data.x[i], 2, bend);
        return bend.y;
    };
    const auto [first, last] = fit.WindowAt(index);
    for (std::size_t away = 0; away < last - first; ++away) {
        for (const std::size_t i : {index + away, index - std::min(index, away + 1)}) {
            if (i < partFirst || i + 1 >= partLast) continue;
            const double before = bendAt(i), after = bendAt(i + 1);
            if (!(before * slope >= 0 && after * slope < 0)) continue;
            const double t = before / (before - after), interval = data.x[i + 1] - data.x[i];
            const double change = std::abs(before - after) / interval;
            return Zero{i, data.x[i] + t * interval, fit.NoiseOf(i, std::array{1 - t, t}, 2) / change};
        }
    }
    return std::nullopt;
}

}  // namespace

CurveEndPoint DerivativeEndPoint(const CurveData& data, const EndPointOptions& options) {
    const Steepest steepest = FindSteepest(data, options);
    if (steepest.refusal.refusal != CurveRefusal::kNone) return steepest.refusal;
    const bool isFirst = options.method == EndPointMethod::kFirstDerivative;
    const std::size_t index = steepest.index;
    const auto zero = [&](std::size_t window, std::size_t degree) {
        LocalFit fit(data, window, degree);
        return isFirst ? TopOfSlopes(data, fit, index) : ZeroBetween(data, fit, index, steepest.slope.y);
    };
    const std::optional<Zero> found = zero(options.window, options.degree);
    if (!found) {
        return RefusedEndPoint(CurveRefusal::kNoPlace,
                               "the second derivative has no clear zero near " + NumberInSentence(steepest.slope.x));
    }
    double spread = 0;
    const std::size_t window0 = options.window, degree0 = options.degree;
    for (const auto& [window, degree] :
         {std::pair(std::max(window0, degree0 + 3), degree0 + 2), std::pair(window0 + 2, degree0),
          std::pair(std::max(window0 - std::min<std::size_t>(window0, 2), degree0 + 1), degree0)}) {
        const std::optional<Zero> other = zero(window, degree);
        if (other) spread = std::max(spread, std::abs(other->place - found->place));
    }
    LocalFit fit(data, options.window, options.degree);
    return Place(data, fit, found->index, found->place, std::hypot(found->noise, spread));
}

}  // namespace qel
