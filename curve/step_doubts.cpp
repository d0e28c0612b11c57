#include "qellib10/curve/step_doubts.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <random>
#include <utility>

#include "qellib10/curve/stray_readings.h"

namespace qel {
namespace {

constexpr std::size_t kNear = 7;        // readings on either side that strays could move a step from
constexpr std::size_t kSearched = 60;   // readings on either side that a step is searched in again
constexpr std::size_t kMostStrays = 4;  // in two places
constexpr std::size_t kLong = 500;      // readings: their noise is well known, and long runs are fitted
constexpr double kMove = 1.75;          // deviations: the noise of few readings is hardly known better
constexpr double kOfSteepest = 0.5;     // a step is as steep as that
constexpr std::size_t kFewIntervals = 3;
// Deviations between two readings; else noise alone makes an interval the steepest. Of n differences noise makes the
// largest about 2 sqrt(ln n).
constexpr double kClearRise = 6, kClearOfMany = 2.6;
constexpr int kMovedSearches = 24;
constexpr std::size_t kMostWays = 60;  // so many leave no doubt that the place is open
constexpr double kSamePlace = 0.25;    // of the smallest interval at the step

using Flags = std::vector<bool>;

struct Window {
    std::size_t first, last;  // past its last reading

    std::size_t Size() const { return last - first; }
};

Flags With(Flags leftOut, const Window& window) {
    std::fill(leftOut.begin() + static_cast<std::ptrdiff_t>(window.first),
              leftOut.begin() + static_cast<std::ptrdiff_t>(window.last), true);
    return leftOut;
}

// The readings around a step, and the ways to leave some of them out.
class Surroundings {
public:
    Surroundings(const Judged& curve, const Step& step) : m_curve(curve), m_step(step) {
        const std::vector<double>& volume = m_curve.readings.volume;
        const auto at = static_cast<std::size_t>(std::ranges::lower_bound(volume, step.volume) - volume.begin());
        const std::size_t from = at - std::min(at, kSearched), to = std::min(volume.size(), at + kSearched);
        const auto cut = [&](auto& values) {
            values.erase(values.begin() + static_cast<std::ptrdiff_t>(to), values.end());
            values.erase(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(from));
        };
        cut(m_curve.readings.signal);
        cut(m_curve.strays);
        cut(m_curve.readings.volume);
        m_at = at - from;
        m_near = {m_at - std::min(m_at, kNear), std::min(to - from, m_at + kNear)};
    }

    bool IsClean() const {
        const auto near = m_curve.strays.begin() + static_cast<std::ptrdiff_t>(m_near.first);
        const bool hasStrays = std::find(near, near + static_cast<std::ptrdiff_t>(m_near.Size()), true) !=
                               near + static_cast<std::ptrdiff_t>(m_near.Size());
        return !hasStrays && IsClean(m_curve.strays);
    }

    bool IsPlaceOpen() const {
        std::vector<Flags> ways = Ways();
        if (ways.empty() || ways.size() > kMostWays) return true;
        for (std::size_t i = 0, count = ways.size(); i < count; ++i) AddWider(ways, i);
        const double most = kSamePlace * SmallestInterval();
        return std::ranges::any_of(ways, [&](const Flags& way) {
            const auto other =
                SteepestStep(SmoothByMedian(KeptPoints(m_curve.readings, way)), m_curve.direction, m_curve.noise);
            return !other || std::abs(other->volume - m_step.volume) > most;
        });
    }

private:
    // Of the readings that are near.
    bool IsClean(const Flags& leftOut) const {
        TitrationCurve kept;
        for (std::size_t i = m_near.first; i < m_near.last; ++i) {
            if (leftOut[i]) continue;
            kept.volume.push_back(m_curve.readings.volume[i]);
            kept.signal.push_back(m_curve.readings.signal[i]);
        }
        return kept.volume.size() > 1 &&
               IsOneStep(MergeRepeats(kept), m_curve.direction, m_curve.noise, m_curve.backward);
    }

    std::vector<Window> Windows() const {
        std::vector<Window> windows;
        for (std::size_t size = 1; size <= kLongestStray; ++size) {
            for (std::size_t i = m_near.first; i + size <= m_near.last; ++i) windows.push_back({i, i + size});
        }
        return windows;
    }

    std::vector<Flags> Ways() const {
        Flags farOnly = m_curve.strays;
        for (std::size_t i = m_near.first; i < m_near.last; ++i) farOnly[i] = false;
        std::vector<Flags> ways;
        const auto add = [&](Flags way) {
            if (IsClean(way)) ways.push_back(std::move(way));
        };
        const std::vector<Window> windows = Windows();
        for (const Window& window : windows) add(With(farOnly, window));
        if (ways.empty()) {
            // What is left out already may be part of another place.
            for (const Window& window : windows) add(With(m_curve.strays, window));
            for (std::size_t i = 0; i < windows.size(); ++i) {
                for (std::size_t j = 0; j < i; ++j) {
                    if (windows[i].Size() + windows[j].Size() <= kMostStrays)
                        add(With(With(farOnly, windows[i]), windows[j]));
                }
            }
        }
        add(m_curve.strays);
        return ways;
    }

    // With one more reading before each that is left out, and with one more after it.
    void AddWider(std::vector<Flags>& ways, std::size_t at) const {
        Flags before = ways[at], after = before;
        for (std::size_t i = m_near.first; i < m_near.last; ++i) {
            if (!ways[at][i]) continue;
            if (i > 0) before[i - 1] = true;
            if (i + 1 < after.size()) after[i + 1] = true;
        }
        ways.push_back(std::move(before));
        ways.push_back(std::move(after));
    }

    double SmallestInterval() const {
        const std::vector<double>& volume = m_curve.readings.volume;
        double smallest = IntervalAt(volume, m_step.volume);
        for (std::size_t i = m_at - std::min<std::size_t>(m_at, 2); i + 1 < std::min(volume.size(), m_at + 3); ++i) {
            if (volume[i + 1] > volume[i]) smallest = std::min(smallest, volume[i + 1] - volume[i]);
        }
        return smallest;
    }

    Judged m_curve;
    Step m_step;
    std::size_t m_at = 0;
    Window m_near{0, 0};
};

// Of the interval at a volume and those before and after it; 0 at an end.
double MeanIntervalAt(const std::vector<double>& volumes, double volume) {
    const auto after = std::ranges::upper_bound(volumes, volume) - volumes.begin();
    if (after < 2 || after + 1 >= std::ssize(volumes)) return 0;
    const auto at = static_cast<std::size_t>(after);
    return (volumes[at + 1] - volumes[at - 2]) / 3;
}

}  // namespace

CurvePoints KeptPoints(const TitrationCurve& readings, const std::vector<bool>& leftOut) {
    TitrationCurve kept;
    for (std::size_t i = 0; i < readings.volume.size(); ++i) {
        if (leftOut[i]) continue;
        kept.volume.push_back(readings.volume[i]);
        kept.signal.push_back(readings.signal[i]);
    }
    return MergeRepeats(kept);
}

bool IsPlaceOpen(const Judged& curve, const Step& step) {
    const Surroundings around(curve, step);
    return !around.IsClean() && around.IsPlaceOpen();
}

bool IsBesideRise(const CurvePoints& points, const Judged& curve, const Step& step, double most) {
    std::vector<double> slopes;
    for (std::size_t i = 0; i + 1 < points.x.size(); ++i)
        slopes.push_back(curve.direction * (points.y[i + 1] - points.y[i]) / (points.x[i + 1] - points.x[i]));
    const auto at = static_cast<std::size_t>(std::ranges::max_element(slopes) - slopes.begin());
    const double clear = std::max(kClearRise, kClearOfMany * std::sqrt(std::log(static_cast<double>(slopes.size()))));
    if (std::abs(points.y[at + 1] - points.y[at]) < clear * curve.noise) return false;
    std::size_t first = at, last = at + 1;
    while (first > 0 && slopes[first - 1] > kOfSteepest * slopes[at]) --first;
    while (last < slopes.size() && slopes[last] > kOfSteepest * slopes[at]) ++last;
    if (last - first > kFewIntervals) return false;
    double moment = 0;
    for (std::size_t i = first; i < last; ++i)
        moment += (points.y[i + 1] - points.y[i]) * std::midpoint(points.x[i], points.x[i + 1]);
    const double center = moment / (points.y[last] - points.y[first]);
    return std::abs(center - step.volume) > most;
}

bool CanNoiseMove(const Judged& curve, const Step& step, double most) {
    std::mt19937 random;  // always the same numbers: a curve has one end point
    const CurvePoints kept = KeptPoints(curve.readings, curve.strays);
    if (kept.x.size() > kLong) return false;
    most = std::max(most, MeanIntervalAt(kept.x, step.volume) / 2);  // one short interval says little of its neighbours
    const double move = kMove * curve.noise;
    for (int i = 0; i < kMovedSearches; ++i) {
        CurvePoints moved = kept;
        for (double& signal : moved.y) signal += random() % 2 == 0 ? move : -move;
        const auto other = SteepestStep(SmoothByMedian(std::move(moved)), curve.direction, curve.noise);
        if (!other) return true;
        const double there = std::max(IntervalAt(kept.x, other->volume), MeanIntervalAt(kept.x, other->volume)) / 2;
        if (std::abs(other->volume - step.volume) > std::min(most, there)) return true;
    }
    return false;
}

}  // namespace qel
