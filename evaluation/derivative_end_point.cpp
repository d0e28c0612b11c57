#include <array>
#include <cmath>
#include <numeric>

#include "qellib10/evaluation/end_points.h"
#include "qellib10/evaluation/following_window.h"
#include "qellib10/evaluation/local_fit.h"

namespace qel {
namespace {

constexpr double kClear = 5;         // standard errors
constexpr double kSmallMove = 1e-6;  // of the slope
constexpr double kOfWhole = 3;       // a step is so much steeper than the curve from its first reading to its last

constexpr double kSame = 2;                                      // standard errors of a difference
constexpr double kLeastOpen = 0.02;                              // of an interval
constexpr double kOfUneven = 0.1;                                // of the difference between the intervals beside
constexpr std::size_t kTextbookWindow = 3, kTextbookDegree = 2;  // slopes and second differences of readings

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
    // The second difference of three readings belongs to their mean.
    const auto placeAt = [&](std::size_t i) {
        return last - first == 3 ? (data.x[i - 1] + data.x[i] + data.x[i + 1]) / 3 : data.x[i];
    };
    for (std::size_t away = 0; away < last - first; ++away) {
        for (const std::size_t i : {index + away, index - std::min(index, away + 1)}) {
            if (i < partFirst + 1 || i + 2 >= partLast) continue;
            const double before = bendAt(i), after = bendAt(i + 1);
            if (!(before * slope >= 0 && after * slope < 0)) continue;
            const double t = before / (before - after), interval = placeAt(i + 1) - placeAt(i);
            const double change = std::abs(before - after) / interval;
            return Zero{i, placeAt(i) + t * interval, fit.NoiseOf(i, std::array{1 - t, t}, 2) / change};
        }
    }
    return std::nullopt;
}

double SlopeAfter(const CurveData& data, std::size_t i) {
    return std::abs((data.y[i + 1] - data.y[i]) / (data.x[i + 1] - data.x[i]));
}

// The point before the steepest interval within a window of a point.
std::size_t SteepestInterval(const CurveData& data, std::size_t index, std::size_t window) {
    const auto [first, last] = data.PartOf(index);
    std::size_t best = std::max(first, index - std::min(index, window));
    for (std::size_t i = best; i + 1 < std::min(last, index + window); ++i) {
        if (SlopeAfter(data, i) > SlopeAfter(data, best)) best = i;
    }
    return best;
}

// The end of an interval beside which the curve is steeper.
std::size_t SteeperEnd(const CurveData& data, std::size_t before) {
    const auto [first, last] = data.PartOf(before);
    if (before <= first || before + 2 >= last) return before;
    return SlopeAfter(data, before - 1) > SlopeAfter(data, before + 1) ? before : before + 1;
}

// The standard uncertainty of a place by differences of readings. Where the curve is level beside the steepest
// interval, all of it is as likely; where it is as steep there, little is open. Uneven steps move it. Made curves show
// these rules.
double OpenPart(const CurveData& data, std::size_t steepest, double place) {
    const auto [first, last] = data.PartOf(steepest);
    double slopes = 0, lengths[2] = {};
    for (const auto& [side, i] : {std::pair(0, steepest - 1), std::pair(1, steepest + 1)}) {
        if (i + 1 <= first || i + 1 >= last) continue;
        slopes += SlopeAfter(data, i);
        lengths[side] = data.x[i + 1] - data.x[i];
    }
    const double sharpness = std::clamp(1 - slopes / (2 * SlopeAfter(data, steepest)), 0.0, 1.0);
    const double low = data.x[steepest], high = data.x[steepest + 1];
    const double length = std::max(high - low, (high - low + lengths[0] + lengths[1]) / 3);
    return std::hypot(kLeastOpen * length, sharpness * length / std::sqrt(12.0),
                      (lengths[1] - lengths[0]) * kOfUneven) +
           std::max({low - place, place - high, 0.0});
}

// How far the points are apart around the steepest one whose slopes are the same within their noise.
double SameSlopes(const CurveData& data, const EndPointOptions& options, std::size_t index, const CurveValue& slope) {
    LocalFit fit(data, options.window, options.degree);
    const auto [first, last] = data.PartOf(index);
    // Standard errors that the slope at a point is less steep. The windows of near points have readings in common.
    const auto lessSteep = [&](std::size_t i) {
        CurveValue other;
        if (!fit.At(i, data.x[i], 1, other)) return kClear;
        const std::size_t low = std::min(i, index), apart = std::max(i, index) - low;
        double noise = std::hypot(slope.uncertainty, other.uncertainty);
        if (apart < options.window) {
            std::vector<double> rates(apart + 1);
            rates.front() = 1;
            rates.back() = -1;
            noise = fit.NoiseOf(low, rates, 1);
        }
        return (std::abs(slope.y) - std::copysign(1, slope.y) * other.y) / noise;
    };
    double low = data.x[index], high = low;
    for (std::size_t i = index; i > first; --i) {
        const double errors = lessSteep(i - 1);
        if (errors >= kClear) break;
        if (errors < kSame) low = data.x[i - 1];
    }
    for (std::size_t i = index + 1; i < last; ++i) {
        const double errors = lessSteep(i);
        if (errors >= kClear) break;
        if (errors < kSame) high = data.x[i];
    }
    return high - low;
}

}  // namespace

CurveEndPoint DerivativeEndPoint(const CurveData& data, const EndPointOptions& options) {
    const Steepest steepest = FindSteepest(data, options);
    if (steepest.refusal.refusal != CurveRefusal::kNone) return steepest.refusal;
    const bool isFirst = options.method == EndPointMethod::kFirstDerivative;
    std::size_t index = steepest.index,
                window = FollowingWindow(data, index - 1, index + 1, options.window, options.degree);
    std::size_t degree = options.degree, interval = 0;
    const bool isTextbook = window == 0;
    if (isTextbook) {
        interval = SteepestInterval(data, steepest.index, options.window);
        index = SteeperEnd(data, interval);
        window = kTextbookWindow;
        degree = kTextbookDegree;
    }
    const auto zero = [&](std::size_t otherWindow, std::size_t otherDegree) {
        LocalFit fit(data, otherWindow, otherDegree);
        return isFirst ? TopOfSlopes(data, fit, index) : ZeroBetween(data, fit, index, steepest.slope.y);
    };
    const std::optional<Zero> found = zero(window, degree);
    if (!found) {
        return RefusedEndPoint(CurveRefusal::kNoPlace,
                               "the second derivative has no clear zero near " + NumberInSentence(steepest.slope.x));
    }
    double spread = 0;
    const auto compare = [&](std::size_t otherWindow, std::size_t otherDegree) {
        const std::optional<Zero> other = zero(otherWindow, otherDegree);
        if (other) spread = std::max(spread, std::abs(other->place - found->place));
    };
    if (isTextbook) {
        spread = OpenPart(data, interval, found->place);
    } else {
        compare(std::max(window, degree + 3), degree + 2);
        compare(window + 2, degree);
        if (window > degree + 2) compare(window - 2, degree);
    }
    spread = std::hypot(spread, SameSlopes(data, options, steepest.index, steepest.slope) / std::sqrt(12.0));
    LocalFit fit(data, window, degree);
    CurveEndPoint end = Place(data, fit, found->index, found->place, std::hypot(found->noise, spread));
    end.degreesOfFreedom = EffectiveDegrees(found->noise * found->noise, data.noiseDegrees, spread * spread,
                                            std::numeric_limits<double>::infinity());
    return end;
}

}  // namespace qel
