#include <cmath>

#include "qellib10/evaluation/curve.h"
#include "qellib10/evaluation/curve_lines.h"
#include "qellib10/evaluation/local_fit.h"

namespace qel {
namespace {

constexpr double kMostBend = 0.1;  // of the slope

CurveValues Fitted(const CurveData& data, std::size_t order, std::size_t window, std::size_t degree) {
    if (data.refusal != CurveRefusal::kNone) return RefusedValues(data.refusal, data.reason);
    if (std::string fault = WindowFault(window, degree, order); !fault.empty())
        return RefusedValues(CurveRefusal::kArgument, std::move(fault));
    CurveValues found;
    found.values = LocalFit(data, window, degree).All(order);
    if (found.values.empty()) {
        return RefusedValues(CurveRefusal::kTooFewPoints,
                             "no part of the curve has the " + PointsInSentence(degree + 1) +
                                 " that a polynomial of degree " + std::to_string(degree) + " needs");
    }
    return found;
}

}  // namespace

CurveValues Curve::Smoothed(std::size_t window, std::size_t degree) const { return Fitted(*m_data, 0, window, degree); }

CurveValues Curve::Derivative(std::size_t order, std::size_t window, std::size_t degree) const {
    if (order == 0)
        return RefusedValues(CurveRefusal::kArgument, "there is no derivative 0; Smoothed gives the values");
    return Fitted(*m_data, order, window, degree);
}

CurveResult Curve::Drift(const CurveRange& range) const {
    const CurveData& data = *m_data;
    if (data.refusal != CurveRefusal::kNone) return Refused(data.refusal, data.reason);
    const auto [first, last] = data.In(range);
    const std::size_t count = last - first;
    if (count < 3)
        return Refused(CurveRefusal::kTooFewPoints,
                       "a drift needs 3 points, there are " + std::to_string(count) + " in the range");
    const auto part = [&](const std::vector<double>& values) { return std::span(values).subspan(first, count); };
    const auto line = FitLine(part(data.x), part(data.y), part(data.counts), data.digitNoise);
    if (!line) return Refused(CurveRefusal::kNoFit, "no line can be computed through " + PointsInSentence(count));
    if (line->IsBent(kMostBend * std::abs(line->Slope()))) {
        return Refused(CurveRefusal::kNotStraight, "the signal does not drift steadily: its slope of " +
                                                       NumberInSentence(line->Slope()) + " changes by " +
                                                       NumberInSentence(line->bend) + " from the start to the end");
    }
    CurveResult drift;
    drift.value = line->Slope();
    drift.uncertainty = line->scatter * std::sqrt(line->fit.Covariance(1, 1));
    drift.degreesOfFreedom = static_cast<double>(line->fit.degreesOfFreedom);
    return drift;
}

}  // namespace qel
