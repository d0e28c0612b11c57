#pragma once

#include "qellib10/curve/end_point.h"

namespace qel {

struct LocatedEndPoint {
    EndPoint endPoint;
    double error = 0;     // standard error of the volume by the noise of the fit
    double interval = 0;  // between the points around it, or the means of points
};

/// As FindEndPoint, with how sure it is.
QELLIB10_INTERNAL_API LocatedEndPoint LocateEndPoint(const TitrationCurve& curve);

}  // namespace qel
