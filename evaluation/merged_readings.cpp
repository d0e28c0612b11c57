#include "qellib10/evaluation/merged_readings.h"

#include <cmath>
#include <numbers>

#include "qellib10/evaluation/reading_noise.h"

namespace qel {
namespace {

constexpr double kStrayNoise = 6;
constexpr double kMuchFurther = 3;

}  // namespace

MergedReadings MergeReadings(std::span<const CurvePoint> readings, const std::vector<std::size_t>& order,
                             RepeatedReadings repeats, const std::vector<bool>& leftOut) {
    MergedReadings merged;
    for (std::size_t first = 0, last = 0; first < order.size(); first = last) {
        double sum = 0, count = 0, lastOne = 0;
        for (last = first; last < order.size() && readings[order[last]].x == readings[order[first]].x; ++last) {
            if (leftOut[order[last]]) continue;
            lastOne = readings[order[last]].y;
            sum += lastOne;
            ++count;
        }
        const bool isLast = repeats == RepeatedReadings::kLast;
        merged.starts.push_back(first);
        merged.x.push_back(readings[order[first]].x);
        merged.y.push_back(isLast ? lastOne : sum / count);
        merged.counts.push_back(isLast ? 1 : count);
        if (isLast) continue;
        for (std::size_t i = first; i < last; ++i) {
            if (!leftOut[order[i]]) merged.squares += std::pow(readings[order[i]].y - sum / count, 2);
        }
        merged.degrees += static_cast<std::size_t>(count) - 1;
    }
    merged.starts.push_back(order.size());
    return merged;
}

void MarkRepeatStrays(std::span<const CurvePoint> readings, const std::vector<std::size_t>& order, double noise,
                      double digit, std::vector<bool>& strays) {
    MergedReadings medians = MergeReadings(readings, order, RepeatedReadings::kAverage, strays);
    if (medians.degrees == 0) return;
    std::vector<double> moves;
    for (std::size_t group = 0; group < medians.x.size(); ++group) {
        std::vector<double> values;
        for (std::size_t i = medians.starts[group]; i < medians.starts[group + 1]; ++i) {
            values.push_back(readings[order[i]].y);
            if (i > medians.starts[group]) moves.push_back(std::abs(values.back() - values[values.size() - 2]));
        }
        if (values.size() > 2) medians.y[group] = MedianIn(values);
    }
    if (!(noise > 0)) {
        const double ofRepeats = MedianIn(moves) / kNormalQuartile / std::numbers::sqrt2;
        const bool isKnown = ofRepeats > 0 && medians.degrees >= kFewestRepeats;
        noise =
            std::max({ofRepeats, digit / std::sqrt(12.0), isKnown ? 0 : EstimateNoise(medians, 0, 0, digit).deviation});
    }
    const double far = kStrayNoise * std::numbers::sqrt2 * noise;
    for (std::size_t group = 0; group < medians.x.size(); ++group) {
        const std::size_t first = medians.starts[group], count = medians.starts[group + 1] - first;
        const auto distance = [&](std::size_t i, double from) { return std::abs(readings[order[first + i]].y - from); };
        if (count > 2) {
            for (std::size_t i = 0; i < count; ++i) {
                if (distance(i, medians.y[group]) > far) strays[order[first + i]] = true;
            }
        } else if (count == 2 && distance(0, readings[order[first + 1]].y) > far && group > 0 &&
                   group + 1 < medians.x.size()) {
            const double t = (medians.x[group] - medians.x[group - 1]) / (medians.x[group + 1] - medians.x[group - 1]);
            const double between = std::lerp(medians.y[group - 1], medians.y[group + 1], t);
            const double one = distance(0, between), two = distance(1, between);
            if (std::max(one, two) > kMuchFurther * std::min(one, two))
                strays[order[first + (one > two ? 0 : 1)]] = true;
        }
    }
}

}  // namespace qel
