#include "qellib10/evaluation/end_points.h"

#include <cmath>

#include "qellib10/curve/located_end_point.h"
#include "qellib10/evaluation/local_fit.h"
#include "qellib10/platform/error.h"

namespace qel {
namespace {

// How far a polynomial of noiseless readings is from a titration's steepest place, of an interval between readings:
// the half-width of a rectangular distribution. Nineteen of twenty made curves are within twice its deviation.
constexpr double kShapeInterval = 0.125;

std::string Fault(const EndPointOptions& options) {
    const bool isFirst = options.method == EndPointMethod::kFirstDerivative;
    const bool isSecond = options.method == EndPointMethod::kSecondDerivative;
    if (std::string fault = WindowFault(options.window, options.degree, isFirst ? 3 : (isSecond ? 2 : 1));
        !fault.empty())
        return fault;
    if (!std::isfinite(options.level)) return "the level is no number";
    if (!std::isfinite(options.startVolume) || options.startVolume < 0) return "the volume of the sample is below 0";
    if (!std::isfinite(options.perDecade) || options.perDecade == 0)
        return "a signal that changes by " + NumberInSentence(options.perDecade) +
               " for ten times the ion shows nothing of it";
    return {};
}

}  // namespace

double EffectiveDegrees(double first, double firstDegrees, double second, double secondDegrees) {
    const double sum = first + second;
    const double shares = first * first / firstDegrees + second * second / secondDegrees;
    return shares > 0 ? std::max(1.0, std::floor(sum * sum / shares)) : std::numeric_limits<double>::infinity();
}

CurveEndPoint SteepestEndPoint(const CurveData& data, const EndPointOptions& options) {
    TitrationCurve curve;
    for (const CurvePoint& point : data.given) {
        if (point.x < options.range.first || point.x > options.range.last) continue;
        curve.volume.push_back(point.x);
        curve.signal.push_back(point.y);
    }
    try {
        const LocatedEndPoint located = LocateEndPoint(curve);
        CurveEndPoint found;
        found.value = located.endPoint.volume;
        found.signal = located.endPoint.signal;
        found.uncertainty = std::hypot(located.error, kShapeInterval * located.interval / std::sqrt(3.0));
        found.degreesOfFreedom = data.refusal == CurveRefusal::kNone ? data.noiseDegrees : 1;
        found.steepest = located.endPoint;
        return found;
    } catch (const DataError& refusal) {
        return RefusedEndPoint(CurveRefusal::kUncertain, refusal.what());
    }
}

namespace {

CurveEndPoint EndPointOf(const CurveData& data, const EndPointOptions& options) {
    switch (options.method) {
        case EndPointMethod::kSteepest:
            return SteepestEndPoint(data, options);
        case EndPointMethod::kFirstDerivative:
        case EndPointMethod::kSecondDerivative:
            return DerivativeEndPoint(data, options);
        case EndPointMethod::kFixedValue:
            return FixedValueEndPoint(data, options);
        case EndPointMethod::kTangents:
            return TangentsEndPoint(data, options);
        case EndPointMethod::kLines:
            return LinesEndPoint(data, options);
        case EndPointMethod::kGran:
            return GranEndPoint(data, options);
    }
    return RefusedEndPoint(CurveRefusal::kArgument, "there is no such method");
}

}  // namespace

CurveEndPoint Curve::EndPointBy(const EndPointOptions& options) const {
    const bool isForSteepest =  // which takes fewer points than the others
        m_data->refusal == CurveRefusal::kTooFewPoints && options.method == EndPointMethod::kSteepest;
    if (m_data->refusal != CurveRefusal::kNone && !isForSteepest)
        return RefusedEndPoint(m_data->refusal, m_data->reason);
    if (std::string fault = Fault(options); !fault.empty())
        return RefusedEndPoint(CurveRefusal::kArgument, std::move(fault));
    CurveEndPoint found = EndPointOf(*m_data, options);
    if (found.refusal == CurveRefusal::kNoPlace) found.reason += StraysInSentence(*m_data);
    return found;
}

}  // namespace qel
