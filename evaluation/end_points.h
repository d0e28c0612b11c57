#pragma once

#include "qellib10/evaluation/curve_data.h"

namespace qel {

// The methods, each for a curve that can be evaluated and options that have a meaning.

CurveEndPoint SteepestEndPoint(const CurveData& data, const EndPointOptions& options);
CurveEndPoint DerivativeEndPoint(const CurveData& data, const EndPointOptions& options);
CurveEndPoint FixedValueEndPoint(const CurveData& data, const EndPointOptions& options);
CurveEndPoint TangentsEndPoint(const CurveData& data, const EndPointOptions& options);
CurveEndPoint LinesEndPoint(const CurveData& data, const EndPointOptions& options);
CurveEndPoint GranEndPoint(const CurveData& data, const EndPointOptions& options);

inline CurveEndPoint RefusedEndPoint(CurveRefusal refusal, std::string reason) {
    return {Refused(refusal, std::move(reason)), 0};
}

/// Effective degrees of freedom of the sum of two variances (Welch and Satterthwaite), rounded down, at least 1.
double EffectiveDegrees(double first, double firstDegrees, double second, double secondDegrees);

}  // namespace qel
