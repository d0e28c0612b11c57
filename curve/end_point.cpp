#include "qellib10/curve/end_point.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <numeric>
#include <string>

#include "qellib10/curve/located_end_point.h"
#include "qellib10/curve/median.h"
#include "qellib10/curve/noise.h"
#include "qellib10/curve/step_doubts.h"
#include "qellib10/curve/stray_readings.h"
#include "qellib10/platform/error.h"

namespace qel {
namespace {

constexpr std::size_t kFewestPoints = 5;
constexpr std::size_t kEndIntervals = 3;  // at either end, whose slope is compared with the step's
constexpr double kToleranceNoise = 6;     // deviations of a reading
constexpr double kToleranceRange = 0.01;  // of all signals
constexpr std::size_t kRareMoves = 3;     // so many of the largest moves back may be strays
constexpr double kOfUsualMove = 3;
constexpr double kClearlySteeper = 1.5;
constexpr double kOfWhole = 3;  // a step is so much steeper than the curve from its first reading to its last
constexpr std::size_t kIntervalsAround = 5;  // on either side, whose median a gap is compared with
constexpr double kGap = 3;
constexpr double kLargest = 1e30, kClosest = 1e-30;  // the slopes and their squares stay within a double

std::vector<std::size_t> OrderOfVolumes(const TitrationCurve& curve) {
    std::vector<std::size_t> order(curve.volume.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, {}, [&](std::size_t i) { return curve.volume[i]; });
    return order;
}

// The noise of a steep curve of few readings seems large, but then hardly a reading goes back. Readings that are left
// out do not count: what several strays at one place differ by is not the curve's noise.
double BackwardTolerance(const Judged& curve, double range) {
    std::vector<double> kept, moves;
    for (std::size_t i = 0; i < curve.strays.size(); ++i) {
        if (!curve.strays[i]) kept.push_back(curve.readings.signal[i]);
    }
    for (std::size_t i = 1; i < kept.size(); ++i) moves.push_back(curve.direction * (kept[i - 1] - kept[i]));
    if (moves.size() <= kRareMoves) return curve.tolerance;
    std::ranges::nth_element(moves, moves.begin() + kRareMoves, std::ranges::greater());
    return std::min(curve.tolerance, std::max(kOfUsualMove * moves[kRareMoves], kToleranceRange * range));
}

double Range(const std::vector<double>& signal) {
    const auto [low, high] = std::ranges::minmax(signal);
    return high - low;
}

void RequireUsualNumbers(const CurvePoints& points) {
    const auto isLarge = [](double value) { return std::abs(value) > kLargest; };
    if (std::ranges::any_of(points.x, isLarge) || std::ranges::any_of(points.y, isLarge))
        throw DataError("a curve has a number beyond 1e30");
    for (std::size_t i = 1; i < points.x.size(); ++i) {
        if (points.x[i] - points.x[i - 1] < kClosest) throw DataError("a curve has volumes closer than 1e-30");
    }
}

Judged Judge(const TitrationCurve& curve, const CurvePoints& all, const std::vector<std::size_t>& order) {
    Judged judged;
    for (const std::size_t i : order) {
        judged.readings.volume.push_back(curve.volume[i]);
        judged.readings.signal.push_back(curve.signal[i]);
    }
    if (all.x.size() < kFewestPoints) {
        throw DataError("an end point needs at least " + std::to_string(kFewestPoints) + " points, there are " +
                        std::to_string(all.x.size()) + "; measure more of the curve");
    }
    judged.noise = RoughNoise(all);
    judged.direction = Direction(judged.readings.signal);
    const auto leaveOut = [&](double range) {
        judged.tolerance = std::max(kToleranceNoise * judged.noise, kToleranceRange * range);
        judged.strays = StrayReadings(judged.readings.signal, judged.tolerance);
    };
    double range = Range(judged.readings.signal);
    leaveOut(range);
    if (const CurvePoints kept = KeptPoints(judged.readings, judged.strays); kept.x.size() >= kFewestPoints) {
        judged.noise = std::max(Noise(kept), RepeatNoise(judged.readings, judged.strays));
        range = Range(kept.y);  // strays may be far beyond it
        leaveOut(range);
    }
    judged.backward = BackwardTolerance(judged, range);
    return judged;
}

// As "%.6g" writes it, in any locale.
std::string Text(double value) {
    std::array<char, 32> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 6).ptr;
    return std::string(text.data(), end);
}

double SlopeBetween(const CurvePoints& points, std::size_t first, std::size_t last, double direction) {
    return direction * (points.y[last] - points.y[first]) / (points.x[last] - points.x[first]);
}

double WholeSlope(const CurvePoints& points) { return std::abs(SlopeBetween(points, 0, points.x.size() - 1, 1)); }

// A curve that is steepest at one of its ends goes past it there, whatever else bends in between.
void RequireStepInside(const CurvePoints& points, const Judged& curve, double slope) {
    const std::size_t last = points.x.size() - 1, reach = std::min(kEndIntervals, last);
    const double clear = kToleranceNoise * curve.noise;
    const auto isSteeper = [&](std::size_t from, std::size_t to) {
        const double end = SlopeBetween(points, from, to, curve.direction);
        return end - clear / (points.x[to] - points.x[from]) > slope;
    };
    if (isSteeper(0, reach))
        throw DataError(
            "the curve begins past its step: it is steepest at its first readings; start with less titrant");
    if (isSteeper(last - reach, last))
        throw DataError("the curve ends before its step: it is steepest at its last readings; titrate further");
}

[[noreturn]] void RefuseWithoutStep(const CurvePoints& points, const Judged& curve) {
    const std::size_t last = points.x.size() - 1;
    if (last >= 2 * kEndIntervals) {
        RequireStepInside(points, curve, kClearlySteeper * WholeSlope(points));
    }
    throw DataError("no end point: the curve has no step that is clear of its noise of " + Text(curve.noise) +
                    "; measure more readings at the step");
}

std::string Readings(std::size_t count) { return std::to_string(count) + (count == 1 ? " reading" : " readings"); }

// So few readings could as well be strays.
void RequireReadingsAround(const CurvePoints& points, const Step& step) {
    const std::size_t before =
        static_cast<std::size_t>(std::ranges::lower_bound(points.x, step.volume) - points.x.begin());
    const std::size_t after = points.x.size() - before,
                      few = std::clamp<std::size_t>(points.x.size() / 2, 1, kLongestStray + 1);
    if (before >= few && after >= few) return;
    const bool isStart = before < few;
    throw DataError("the curve " + std::string(isStart ? "begins" : "ends") + " at its step near " + Text(step.volume) +
                    ": " + Readings(isStart ? before : after) + (isStart ? " before" : " after") + " it, and " +
                    std::to_string(few) + " are needed to tell a step from strays; " +
                    (isStart ? "start with less titrant" : "titrate further"));
}

// If the levels before and after it are the same, it is not a step.
void RequireLevels(const CurvePoints& points, const Judged& curve, const Step& step) {
    std::size_t wrong = 0;
    for (std::size_t i = 0; i < points.x.size(); ++i) {
        const double beyond = curve.direction * (points.y[i] - step.signal) * (points.x[i] < step.volume ? 1 : -1);
        wrong += beyond > curve.tolerance ? 1 : 0;
    }
    if (wrong > kLongestStray) {
        throw DataError("the curve comes back over its step near " + Text(step.volume) + ": " + std::to_string(wrong) +
                        " readings are on the wrong side of it; take out what is not part of this titration");
    }
}

void RequireCertainPlace(const CurvePoints& all, const Judged& curve, const Step& step) {
    const double half = std::max(IntervalAt(all.x, step.volume), step.interval) / 2;
    const CurvePoints kept = KeptPoints(curve.readings, curve.strays);
    const bool isUnsure = kSureErrors * step.error > half || IsBesideRise(kept, curve, step, half);
    if (isUnsure || CanNoiseMove(curve, step, half)) {
        throw DataError("the end point near " + Text(step.volume) + " is uncertain: noise of " + Text(curve.noise) +
                        " moves it by more than half a step between readings, " + Text(half) +
                        "; let each reading settle, or take more of them at the step");
    }
    const std::vector<double>& volume = curve.readings.volume;
    const auto after = std::ranges::upper_bound(volume, step.volume) - volume.begin();
    const bool isNext = curve.strays[static_cast<std::size_t>(std::min(after, std::ssize(volume) - 1))] ||
                        curve.strays[static_cast<std::size_t>(std::max<std::ptrdiff_t>(after - 1, 0))];
    if (isNext || IsPlaceOpen(curve, step)) {
        throw DataError("stray readings at the step near " + Text(step.volume) +
                        " leave the end point open; measure again, or take the strays out of the data");
    }
}

std::optional<std::pair<double, double>> GapAt(const std::vector<double>& volumes, double volume) {
    const auto at = static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(
        std::ranges::upper_bound(volumes, volume) - volumes.begin(), 1, std::ssize(volumes) - 1));
    std::vector<double> around;
    for (std::size_t i = at - std::min(at, kIntervalsAround);
         i + 1 < std::min(volumes.size(), at + kIntervalsAround + 1); ++i) {
        if (i + 1 != at) around.push_back(volumes[i + 1] - volumes[i]);
    }
    if (volumes[at] - volumes[at - 1] <= kGap * MedianOf(around)) return std::nullopt;
    return std::pair(volumes[at - 1], volumes[at]);
}

}  // namespace

LocatedEndPoint LocateEndPoint(const TitrationCurve& curve) {
    const CurvePoints all = MergeRepeats(curve);
    RequireUsualNumbers(all);
    const std::vector<std::size_t> order = OrderOfVolumes(curve);
    const Judged judged = Judge(curve, all, order);
    const CurvePoints used = KeptPoints(judged.readings, judged.strays);
    const std::optional<Step> step = SteepestStep(SmoothByMedian(used), judged.direction, judged.noise);
    if (!step || std::abs(step->slope) < kOfWhole * WholeSlope(used)) RefuseWithoutStep(used, judged);
    RequireStepInside(used, judged, std::abs(step->slope));
    RequireReadingsAround(used, *step);
    RequireLevels(used, judged, *step);
    RequireCertainPlace(all, judged, *step);

    EndPoint found{
        step->volume, step->signal, step->slope, judged.noise, step->points, {}, GapAt(used.x, step->volume)};
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (judged.strays[i]) found.strays.push_back(order[i]);
    }
    return {std::move(found), step->error, step->interval};
}

EndPoint FindEndPoint(const TitrationCurve& curve) { return LocateEndPoint(curve).endPoint; }

CurvePoints UsedPoints(const TitrationCurve& curve, const EndPoint& endPoint) {
    std::vector<bool> leftOut(curve.volume.size());
    for (const std::size_t i : endPoint.strays) {
        if (i >= leftOut.size())
            throw DataError("an end point of another curve: there is no reading " + std::to_string(i));
        leftOut[i] = true;
    }
    return KeptPoints(curve, leftOut);
}

}  // namespace qel
