#pragma once

#include "qellib10/evaluation/curve_baseline.h"
#include "qellib10/evaluation/peak_search.h"

namespace qel {

/// What peaks are read from.
struct PeakCurve {
    const CurveData& data;
    const CurveBaseline& baseline;
    const PeakOptions& options;
    std::vector<double> moved;     // how far the baseline moves with another smoothness
    std::vector<double> above;     // the readings above the baseline
    std::vector<double> smoothed;  // the same of the smoothed curve
};

/// All of a peak but its resolution.
CurvePeak ReadPeak(const PeakCurve& curve, const FoundPeak& found);

}  // namespace qel
