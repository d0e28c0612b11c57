#include "qellib10/evaluation/curve.h"

#include <array>
#include <charconv>
#include <numeric>

#include "qellib10/evaluation/curve_data.h"
#include "qellib10/evaluation/merged_readings.h"
#include "qellib10/evaluation/reading_noise.h"
#include "qellib10/evaluation/reading_strays.h"

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

void LeaveOut(MergedPoints& points, std::vector<std::size_t>& places, const std::vector<bool>& strays) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < strays.size(); ++i) {
        if (strays[i]) continue;
        for (std::vector<double>* const values : {&points.x, &points.y, &points.counts}) (*values)[kept] = (*values)[i];
        places[kept++] = places[i];
    }
    for (std::vector<double>* const values : {&points.x, &points.y, &points.counts}) values->resize(kept);
    places.resize(kept);
}

// Strays make the noise seem large, and are then hidden by it.
void EvaluateNoise(CurveData& data, const std::vector<std::size_t>& order, const CurveOptions& options) {
    std::vector<bool> strays(data.given.size());
    const double digit = DigitOf(data.given);
    data.digitNoise = digit / std::sqrt(12.0);
    if (options.repeats == RepeatedReadings::kAverage)
        MarkRepeatStrays(data.given, order, options.noise, digit, strays);
    const MergedReadings merged = MergeReadings(data.given, order, options.repeats, strays);
    MergedPoints kept = merged;
    std::vector<std::size_t> places(kept.x.size());
    std::iota(places.begin(), places.end(), std::size_t{0});
    for (int pass = 0;; ++pass) {
        const ReadingNoise noise = EstimateNoise(kept, merged.squares, merged.degrees, digit);
        data.noise = options.noise > 0 ? options.noise : noise.deviation;
        if (!(options.noise > 0)) data.noiseDegrees = noise.degreesOfFreedom;
        const std::vector<bool> found = FindStrays(kept, places, data.noise);
        const auto count = static_cast<std::size_t>(std::ranges::count(found, true));
        if (count == 0 || kept.x.size() - count < kFewestPoints || pass == kStrayPasses) break;
        for (std::size_t i = 0; i < found.size(); ++i) {
            for (std::size_t k = merged.starts[places[i]]; found[i] && k < merged.starts[places[i] + 1]; ++k)
                strays[order[k]] = true;
        }
        LeaveOut(kept, places, found);
    }
    for (std::size_t i = 0; i < strays.size(); ++i) {
        if (strays[i]) data.strays.push_back(i);
    }
    data.areStraysIn = !options.leaveOutStrays;
    if (data.areStraysIn) kept = MergeReadings(data.given, order, options.repeats, std::vector<bool>(strays.size()));
    static_cast<MergedPoints&>(data) = std::move(kept);
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
    const MergedReadings all = MergeReadings(points, order, options.repeats, std::vector<bool>(points.size()));
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
    data->given.assign(points.begin(), points.end());
    EvaluateNoise(*data, order, options);
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

std::string StraysInSentence(const CurveData& data) {
    if (data.areStraysIn || data.strays.empty()) return {};
    double first = std::numeric_limits<double>::infinity();
    for (const std::size_t i : data.strays) first = std::min(first, data.given[i].x);
    const bool isOne = data.strays.size() == 1;
    return "; " + std::to_string(data.strays.size()) + (isOne ? " reading was" : " readings were") + " left out as " +
           (isOne ? "a stray, at " : "strays, the first at ") + NumberInSentence(first);
}

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
