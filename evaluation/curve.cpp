#include "qellib10/evaluation/curve.h"

#include <array>
#include <charconv>
#include <numeric>

#include "qellib10/evaluation/curve_data.h"
#include "qellib10/evaluation/reading_noise.h"

namespace qel {
namespace {

constexpr std::size_t kFewestPoints = 6;
constexpr double kLargest = 1e30, kClosest = 1e-30;  // squares and slopes stay within a double
constexpr int kStrayPasses = 3;  // the noise of a curve with many strays seems large until some are left out

std::shared_ptr<CurveData> RefusedData(CurveRefusal refusal, std::string reason) {
    auto data = std::make_shared<CurveData>();
    data->refusal = refusal;
    data->reason = std::move(reason);
    return data;
}

struct Merged {
    MergedPoints points;
    double squares = 0;  // of repeats about their means
    std::size_t degrees = 0;
};

Merged Merge(std::span<const CurvePoint> points, const std::vector<std::size_t>& order, RepeatedReadings repeats) {
    Merged merged;
    for (std::size_t first = 0, last = 0; first < order.size(); first = last) {
        double sum = 0;
        for (last = first; last < order.size() && points[order[last]].x == points[order[first]].x; ++last)
            sum += points[order[last]].y;
        const auto count = static_cast<double>(last - first);
        const bool isLast = repeats == RepeatedReadings::kLast;
        merged.points.x.push_back(points[order[first]].x);
        merged.points.y.push_back(isLast ? points[order[last - 1]].y : sum / count);
        merged.points.counts.push_back(isLast ? 1 : count);
        if (isLast) continue;
        for (std::size_t i = first; i < last; ++i) merged.squares += std::pow(points[order[i]].y - sum / count, 2);
        merged.degrees += last - first - 1;
    }
    return merged;
}

void LeaveOut(MergedPoints& points, const std::vector<bool>& strays) {
    for (std::vector<double>* const values : {&points.x, &points.y, &points.counts}) {
        std::size_t kept = 0;
        for (std::size_t i = 0; i < strays.size(); ++i) {
            if (!strays[i]) (*values)[kept++] = (*values)[i];
        }
        values->resize(kept);
    }
}

// Strays make the noise seem large, and are then hidden by it.
void EvaluateNoise(CurveData& data, const Merged& merged, const CurveOptions& options, std::vector<double>& strayAt) {
    MergedPoints kept = merged.points;
    for (int pass = 0;; ++pass) {
        const ReadingNoise noise = EstimateNoise(kept, merged.squares, merged.degrees);
        data.noise = options.noise > 0 ? options.noise : noise.deviation;
        if (!(options.noise > 0)) data.noiseDegrees = noise.degreesOfFreedom;
        const std::vector<bool> strays = FindStrays(kept, data.noise);
        const auto found = static_cast<std::size_t>(std::ranges::count(strays, true));
        if (found == 0 || kept.x.size() - found < kFewestPoints || pass == kStrayPasses) break;
        for (std::size_t i = 0; i < strays.size(); ++i) {
            if (strays[i]) strayAt.push_back(kept.x[i]);
        }
        LeaveOut(kept, strays);
    }
    std::ranges::sort(strayAt);
    static_cast<MergedPoints&>(data) = options.leaveOutStrays ? std::move(kept) : merged.points;
}

std::shared_ptr<const CurveData> DataOf(std::span<const CurvePoint> points, const CurveOptions& options) {
    if (!(options.noise >= 0) || options.noise > kLargest)
        return RefusedData(CurveRefusal::kArgument, "a noise of " + NumberInSentence(options.noise) + " is impossible");
    for (std::size_t i = 0; i < points.size(); ++i) {
        for (const double value : {points[i].x, points[i].y}) {
            if (!(std::abs(value) <= kLargest)) {
                return RefusedData(CurveRefusal::kNotFinite,
                                   "reading " + std::to_string(i + 1) +
                                       " of the curve is no number up to 1e30: " + NumberInSentence(value));
            }
        }
    }
    std::vector<std::size_t> order(points.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, {}, [&](std::size_t i) { return points[i].x; });
    const Merged merged = Merge(points, order, options.repeats);
    const MergedPoints& all = merged.points;
    if (all.x.size() < kFewestPoints) {
        auto data = RefusedData(CurveRefusal::kTooFewPoints, "a curve needs at least " + std::to_string(kFewestPoints) +
                                                                 " points, there are " + std::to_string(all.x.size()));
        data->given.assign(points.begin(), points.end());
        return data;
    }
    for (std::size_t i = 1; i < all.x.size(); ++i) {
        if (all.x[i] - all.x[i - 1] < kClosest) {
            return RefusedData(CurveRefusal::kNotFinite,
                               "the curve has points closer than 1e-30, at " + NumberInSentence(all.x[i]));
        }
    }
    if (std::ranges::all_of(all.y, [&](double y) { return y == all.y.front(); })) {
        return RefusedData(CurveRefusal::kConstant, "all signals of the curve are " + NumberInSentence(all.y.front()) +
                                                        ": nothing was measured");
    }
    auto data = std::make_shared<CurveData>();
    std::vector<double> strayAt;
    EvaluateNoise(*data, merged, options, strayAt);
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (std::ranges::binary_search(strayAt, points[i].x)) data->strays.push_back(i);
    }
    data->given.assign(points.begin(), points.end());
    data->areEqualCounts = std::ranges::all_of(data->counts, [](double count) { return count == 1; });
    data->parts = FindParts(data->x);
    return data;
}

}  // namespace

std::string NumberInSentence(double value) {
    std::array<char, 32> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 6).ptr;
    return {text.data(), end};
}

std::string PointsInSentence(std::size_t count) { return std::to_string(count) + (count == 1 ? " point" : " points"); }

Curve Curve::Of(std::span<const CurvePoint> points, const CurveOptions& options) {
    return Curve(DataOf(points, options));
}

CurveRefusal Curve::Refusal() const { return m_data->refusal; }

const std::string& Curve::Reason() const { return m_data->reason; }

std::vector<CurvePoint> Curve::Points() const {
    std::vector<CurvePoint> points;
    for (std::size_t i = 0; i < m_data->size(); ++i) points.push_back({m_data->x[i], m_data->y[i]});
    return points;
}

const std::vector<std::size_t>& Curve::Strays() const { return m_data->strays; }

std::vector<CurveRange> Curve::Pauses() const {
    std::vector<CurveRange> pauses;
    for (std::size_t i = 1; i + 1 < m_data->parts.size(); ++i) {
        const std::size_t after = m_data->parts[i];
        pauses.push_back({m_data->x[after - 1], m_data->x[after]});
    }
    return pauses;
}

double Curve::Noise() const { return m_data->noise; }

double Curve::NoiseDegreesOfFreedom() const { return m_data->noiseDegrees; }

}  // namespace qel
