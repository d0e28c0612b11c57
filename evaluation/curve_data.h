#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "qellib10/evaluation/curve.h"

namespace qel {

/// Points of a curve, each x once, rising; with how many readings each counts.
struct MergedPoints {
    std::vector<double> x, y, counts;
};

/// What a Curve knows of its readings.
struct CurveData : MergedPoints {
    std::vector<CurvePoint> given;    // as they were given
    bool areEqualCounts = true;       // each counts 1
    std::vector<std::size_t> parts;   // where each part between pauses starts, and at last the number of points
    std::vector<std::size_t> strays;  // readings as they were given
    bool areStraysIn = false;
    double digitNoise = 0;  // standard deviation of the last digit of the readings
    double noise = 0, noiseDegrees = std::numeric_limits<double>::infinity();
    CurveRefusal refusal = CurveRefusal::kNone;
    std::string reason;

    std::size_t size() const { return x.size(); }
    /// The first index of the part that @p index is in, and the one after its last.
    std::pair<std::size_t, std::size_t> PartOf(std::size_t index) const {
        const auto after = std::ranges::upper_bound(parts, index);
        return {*(after - 1), *after};
    }
    /// The first index in @p range, and the one after the last; none in a range with NaN.
    std::pair<std::size_t, std::size_t> In(const CurveRange& range) const {
        if (std::isnan(range.first) || std::isnan(range.last)) return {0, 0};
        const auto first = std::ranges::lower_bound(x, range.first), last = std::ranges::upper_bound(x, range.last);
        return {static_cast<std::size_t>(first - x.begin()),
                static_cast<std::size_t>(std::max(first, last) - x.begin())};
    }
};

/// Whether the places are in different parts: nothing was measured between the points before and after.
inline bool IsPause(const CurveData& data, std::size_t before) {
    return before + 1 < data.size() && data.PartOf(before) != data.PartOf(before + 1);
}

/// "%.6g", in any locale.
std::string NumberInSentence(double value);

/// "3 points", "1 point"
std::string PointsInSentence(std::size_t count);

/// "; 3 readings were left out as strays, the first at 9.8", to end a reason with; empty where none were.
std::string StraysInSentence(const CurveData& data);

inline CurveResult Refused(CurveRefusal refusal, std::string reason) {
    CurveResult result;
    result.refusal = refusal;
    result.reason = std::move(reason);
    return result;
}

inline CurveValues RefusedValues(CurveRefusal refusal, std::string reason) { return {{}, refusal, std::move(reason)}; }

}  // namespace qel
