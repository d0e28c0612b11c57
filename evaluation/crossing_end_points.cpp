#include <cmath>
#include <optional>

#include "qellib10/evaluation/end_points.h"
#include "qellib10/evaluation/line_crossing.h"
#include "qellib10/platform/algebra/least_squares.h"

namespace qel {
namespace {

using Part = std::pair<std::size_t, std::size_t>;  // of the points: the first one, and the one after the last

// The line in the middle between two parallel ones.
struct MiddleOfTangents {
    LeastSquares fit;
    double center = 0, scatter = 0;

    double At(double place) const {
        const std::vector<double>& c = fit.coefficients;
        return (c[0] + c[1]) / 2 + c[2] * (place - center);
    }
    double Variance(double place) const {
        const double function[] = {0.5, 0.5, place - center};
        return scatter * scatter * fit.Variance(function);
    }
};

std::optional<MiddleOfTangents> MiddleLine(const CurveData& data, const Part& before, const Part& after) {
    const double center = (data.x[before.second - 1] + data.x[after.first]) / 2;
    std::vector<double> design, y, counts;
    for (const auto& [part, isBefore] : {std::pair(before, true), std::pair(after, false)}) {
        for (std::size_t i = part.first; i < part.second; ++i) {
            design.insert(design.end(), {isBefore ? 1.0 : 0.0, isBefore ? 0.0 : 1.0, data.x[i] - center});
            y.push_back(data.y[i]);
            counts.push_back(data.counts[i]);
        }
    }
    const auto fit = FitLeastSquares(design, 3, y, counts);
    if (!fit) return std::nullopt;
    return MiddleOfTangents{*fit, center, std::max(fit->Scatter(), data.noise)};
}

// The place where the curve crosses a line, and the signal there. @param moved how far the line itself is open there
CurveEndPoint EndPointOf(const CurveData& data, const LineCrossing& crossing, const CrossedLine& line, double moved) {
    if (crossing.refusal.refusal != CurveRefusal::kNone)
        return RefusedEndPoint(crossing.refusal.refusal, crossing.refusal.reason);
    const double shape = std::hypot(crossing.shape, moved / crossing.slope);
    CurveEndPoint found;
    found.value = crossing.place;
    found.signal = line.at(crossing.place);
    found.uncertainty = std::hypot(crossing.noise, shape);
    found.degreesOfFreedom = EffectiveDegrees(crossing.noise * crossing.noise, data.noiseDegrees, shape * shape,
                                              std::numeric_limits<double>::infinity());
    return found;
}

}  // namespace

CurveEndPoint FixedValueEndPoint(const CurveData& data, const EndPointOptions& options) {
    const auto [first, last] = data.In(options.range);
    const CrossedLine line{[&](double /*place*/) { return options.level; }, 0, [](double /*place*/) { return 0.0; },
                           "the level " + NumberInSentence(options.level)};
    return EndPointOf(data, FindCrossing(data, first, last, options.window, options.degree, line), line, 0);
}

CurveEndPoint TangentsEndPoint(const CurveData& data, const EndPointOptions& options) {
    const auto before = data.In(options.before), after = data.In(options.after);
    const auto count = [](const Part& part) { return part.second - part.first; };
    if (before.second < before.first + 2 || after.second < after.first + 2) {
        return RefusedEndPoint(CurveRefusal::kTooFewPoints,
                               "parallel tangents need 2 points before and after the step, there are " +
                                   std::to_string(count(before)) + " and " + std::to_string(count(after)));
    }
    if (before.second > after.first)
        return RefusedEndPoint(CurveRefusal::kArgument, "the readings of the tangents overlap");
    const auto middle = MiddleLine(data, before, after);
    if (!middle)
        return RefusedEndPoint(CurveRefusal::kNoFit, "no parallel tangents can be computed through the readings");
    const CrossedLine line{[&](double place) { return middle->At(place); }, middle->fit.coefficients[2],
                           [&](double place) { return middle->Variance(place); }, "the middle between the tangents"};
    const LineCrossing crossing =
        FindCrossing(data, before.second - 1, after.first + 1, options.window, options.degree, line);
    // Readings beside a step are not on straight lines: the half of them that is nearer to it has another middle.
    double moved = 0;
    const Part nearBefore{before.first + count(before) / 2, before.second},
        nearAfter{after.first, after.second - count(after) / 2};
    if (const auto near =
            count(before) > 3 && count(after) > 3 ? MiddleLine(data, nearBefore, nearAfter) : std::nullopt)
        moved = near->At(crossing.place) - line.at(crossing.place);
    return EndPointOf(data, crossing, line, moved);
}

}  // namespace qel
