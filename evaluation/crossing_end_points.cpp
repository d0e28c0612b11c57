#include <cmath>
#include <functional>

#include "qellib10/evaluation/curve_lines.h"
#include "qellib10/evaluation/end_points.h"
#include "qellib10/evaluation/level_crossing.h"

namespace qel {
namespace {

constexpr double kClear = 4;  // standard errors

// A straight line that the curve crosses.
struct Level {
    std::function<double(double)> at;
    double slope = 0;
    std::function<double(double)> variance;
};

std::string Cannot(const std::string& name, double place) {
    return "the curve crosses " + name + " too flatly near " + NumberInSentence(place) +
           ": the noise decides where; choose a steeper place or a wider window";
}

// Where the smoothed curve crosses the line, by its points from @p first up to @p last.
CurveEndPoint Crossing(const CurveData& data, LocalFit fit, std::size_t first, std::size_t last, const Level& level,
                       const std::string& name) {
    std::vector<std::size_t> crossings;  // the points before them
    CurveValue value;
    double previous = NAN;
    for (std::size_t i = first; i < last; ++i) {
        if (!fit.At(i, data.x[i], 0, value)) continue;
        const double above = value.y - level.at(value.x);
        if (previous * above < 0 || (previous != 0 && above == 0)) crossings.push_back(i - 1);
        previous = above;
    }
    if (crossings.empty()) return RefusedEndPoint(CurveRefusal::kNoPlace, "the curve does not come to " + name);
    if (crossings.size() > 1) {
        return RefusedEndPoint(CurveRefusal::kSeveralPlaces,
                               "the curve crosses " + name + ' ' + std::to_string(crossings.size()) +
                                   " times, first at " + NumberInSentence(data.x[crossings.front()]) + ", last at " +
                                   NumberInSentence(data.x[crossings.back()]) + "; choose a range or a wider window");
    }
    const std::size_t before = crossings.front();
    if (IsPause(data, before)) {
        return RefusedEndPoint(CurveRefusal::kPause,
                               "the curve crosses " + name + " where nothing was measured, between " +
                                   NumberInSentence(data.x[before]) + " and " + NumberInSentence(data.x[before + 1]));
    }
    const auto [at, slope] = RefineCrossing(data, fit, data.y, before, level.at);
    const double relative = slope.y - level.slope;
    if (!(std::abs(relative) > kClear * slope.uncertainty))
        return RefusedEndPoint(CurveRefusal::kNoPlace, Cannot(name, at.x));
    CurveEndPoint found;
    found.value = at.x;
    found.signal = at.y;
    found.uncertainty = std::sqrt(at.uncertainty * at.uncertainty + level.variance(at.x)) / std::abs(relative);
    found.degreesOfFreedom = data.noiseDegrees;
    return found;
}

}  // namespace

CurveEndPoint FixedValueEndPoint(const CurveData& data, const EndPointOptions& options) {
    const auto [first, last] = data.In(options.range);
    const auto none = [](double /*place*/) { return 0.0; };
    const Level level{[&](double /*place*/) { return options.level; }, 0, none};
    return Crossing(data, LocalFit(data, options.window, options.degree), first, last, level,
                    "the level " + NumberInSentence(options.level));
}

CurveEndPoint TangentsEndPoint(const CurveData& data, const EndPointOptions& options) {
    const auto [first, middle] = data.In(options.before);
    const auto [second, last] = data.In(options.after);
    if (middle - first < 2 || last - second < 2) {
        return RefusedEndPoint(CurveRefusal::kTooFewPoints,
                               "parallel tangents need 2 points before and after the step, there are " +
                                   std::to_string(middle - first) + " and " + std::to_string(last - second));
    }
    if (middle > second) return RefusedEndPoint(CurveRefusal::kArgument, "the readings of the tangents overlap");
    const double center = (data.x[middle - 1] + data.x[second]) / 2;
    std::vector<double> design, y, counts;
    const auto add = [&](std::size_t from, std::size_t to, bool isBefore) {
        for (std::size_t i = from; i < to; ++i) {
            design.insert(design.end(), {isBefore ? 1.0 : 0.0, isBefore ? 0.0 : 1.0, data.x[i] - center});
            y.push_back(data.y[i]);
            counts.push_back(data.counts[i]);
        }
    };
    add(first, middle, true);
    add(second, last, false);
    const auto fit = FitLeastSquares(design, 3, y, counts);
    if (!fit) return RefusedEndPoint(CurveRefusal::kNoFit, "no parallel tangents can be computed through the readings");
    const double scatter = std::max(fit->Scatter(), data.noise);
    const std::vector<double>& c = fit->coefficients;
    const Level level{[&](double place) { return (c[0] + c[1]) / 2 + c[2] * (place - center); }, c[2],
                      [&](double place) {
                          const double function[] = {0.5, 0.5, place - center};
                          return scatter * scatter * fit->Variance(function);
                      }};
    return Crossing(data, LocalFit(data, options.window, options.degree), middle - 1, second + 1, level,
                    "the middle between the tangents");
}

}  // namespace qel
