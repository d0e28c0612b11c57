#include <cmath>
#include <numbers>

#include "qellib10/evaluation/curve_lines.h"
#include "qellib10/evaluation/end_points.h"

namespace qel {
namespace {

constexpr double kClear = 5;        // standard errors
constexpr double kMostBend = 0.1;   // of the slope, or of the angle between two lines
constexpr double kRounding = 1e-6;  // of slopes: lines that differ by less are parallel
constexpr int kWeightings = 4;      // the weights of Gran's readings depend on the line

std::span<const double> Part(const std::vector<double>& values, std::pair<std::size_t, std::size_t> part) {
    return std::span(values).subspan(part.first, part.second - part.first);
}

CurveEndPoint BentLine(const StraightLine& line, const CurveRange& range) {
    return RefusedEndPoint(CurveRefusal::kNotStraight,
                           "the readings from " + NumberInSentence(range.first) + " to " +
                               NumberInSentence(range.last) + " are not on a straight line: its slope of " +
                               NumberInSentence(line.Slope()) + " changes by " + NumberInSentence(line.bend) +
                               "; take readings further from the bend");
}

CurveRange RangeOf(std::span<const double> x) { return {x.front(), x.back()}; }

double SignalAt(const CurveData& data, double place) {
    const auto after = static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(
        std::ranges::upper_bound(data.x, place) - data.x.begin(), 1, std::ssize(data.x) - 1));
    const double t = (place - data.x[after - 1]) / (data.x[after] - data.x[after - 1]);
    return std::lerp(data.y[after - 1], data.y[after], std::clamp(t, 0.0, 1.0));
}

}  // namespace

CurveEndPoint LinesEndPoint(const CurveData& data, const EndPointOptions& options) {
    const auto before = data.In(options.before), after = data.In(options.after);
    if (before.second > after.first)
        return RefusedEndPoint(CurveRefusal::kArgument, "the readings of the lines overlap");
    const auto first = FitLine(Part(data.x, before), Part(data.y, before), Part(data.counts, before), data.digitNoise);
    const auto second = FitLine(Part(data.x, after), Part(data.y, after), Part(data.counts, after), data.digitNoise);
    if (!first || !second) {
        return RefusedEndPoint(CurveRefusal::kTooFewPoints, "two lines need 3 points each, there are " +
                                                                std::to_string(before.second - before.first) + " and " +
                                                                std::to_string(after.second - after.first));
    }
    const double angle = first->Slope() - second->Slope();
    const auto slopeVariance = [](const StraightLine& line) {
        return std::pow(line.scatter, 2) * line.fit.Covariance(1, 1);
    };
    const double mostBend =
        kMostBend * std::max(std::abs(angle), kRounding * (std::abs(first->Slope()) + std::abs(second->Slope())));
    if (first->IsBent(mostBend)) return BentLine(*first, RangeOf(Part(data.x, before)));
    if (second->IsBent(mostBend)) return BentLine(*second, RangeOf(Part(data.x, after)));
    const double noise = std::sqrt(slopeVariance(*first) + slopeVariance(*second));
    if (!(std::abs(angle) > std::max(kRounding * std::abs(first->Slope()), kClear * noise))) {
        return RefusedEndPoint(CurveRefusal::kNoPlace, "the lines are parallel within their noise: their slopes are " +
                                                           NumberInSentence(first->Slope()) + " and " +
                                                           NumberInSentence(second->Slope()));
    }
    const double place = first->center + (second->At(first->center) - first->At(first->center)) / angle;
    if (!(place >= data.x[before.first] && place <= data.x[after.second - 1])) {
        return RefusedEndPoint(CurveRefusal::kNoPlace,
                               "the lines meet at " + NumberInSentence(place) + ", where neither of them is");
    }
    CurveEndPoint found;
    found.value = place;
    found.signal = first->At(place);
    const double one = first->Variance(place), two = second->Variance(place);
    found.uncertainty = std::sqrt(one + two) / std::abs(angle);
    found.degreesOfFreedom = EffectiveDegrees(one, static_cast<double>(first->fit.degreesOfFreedom), two,
                                              static_cast<double>(second->fit.degreesOfFreedom));
    return found;
}

CurveEndPoint GranEndPoint(const CurveData& data, const EndPointOptions& options) {
    const auto [first, last] = data.In(options.range);
    std::vector<double> x, exponents, function, weights;
    for (std::size_t i = first; i < last; ++i) {
        const double volume = data.x[i] + (options.isWeak ? 0 : options.startVolume);
        if (!(volume > 0)) continue;
        x.push_back(data.x[i]);
        exponents.push_back(data.y[i] / options.perDecade + std::log10(volume));
        weights.push_back(data.counts[i]);
    }
    if (x.size() < 3) {
        return RefusedEndPoint(CurveRefusal::kTooFewPoints,
                               "Gran's line needs 3 points, there are " + std::to_string(x.size()) + " in the range");
    }
    const double highest = *std::ranges::max_element(exponents);
    for (const double exponent : exponents) function.push_back(std::pow(10.0, exponent - highest));
    std::vector<double> fitted = function, scaled(x.size());
    std::optional<StraightLine> line;
    const double relative = data.digitNoise * std::numbers::ln10 / std::abs(options.perDecade);
    for (int i = 0; i < kWeightings; ++i) {
        for (std::size_t k = 0; k < x.size(); ++k) scaled[k] = weights[k] / std::pow(std::max(fitted[k], 1e-6), 2);
        line = FitLine(x, function, scaled, relative);
        if (!line) return RefusedEndPoint(CurveRefusal::kNoFit, "no line can be computed through Gran's function");
        for (std::size_t k = 0; k < x.size(); ++k) fitted[k] = line->At(x[k]);
    }
    if (line->IsBent(kMostBend * std::abs(line->Slope()))) return BentLine(*line, RangeOf(x));
    const double place = line->center - line->At(line->center) / line->Slope();
    if (!(std::abs(line->Slope()) > kClear * line->scatter * std::sqrt(line->fit.Covariance(1, 1))))
        return RefusedEndPoint(CurveRefusal::kNoPlace, "Gran's function does not change in the range");
    if (place > x.front() && place < x.back()) {
        return RefusedEndPoint(CurveRefusal::kNotStraight,
                               "Gran's line ends within its readings, at " + NumberInSentence(place) +
                                   "; take only readings before the end point, or only those after it");
    }
    CurveEndPoint found;
    found.value = place;
    found.signal = SignalAt(data, place);
    found.uncertainty = std::sqrt(line->Variance(place)) / std::abs(line->Slope());
    found.degreesOfFreedom = static_cast<double>(line->fit.degreesOfFreedom);
    return found;
}

}  // namespace qel
