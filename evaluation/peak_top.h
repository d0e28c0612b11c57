#pragma once

#include "qellib10/evaluation/peak_reader.h"

namespace qel {

/// The top of a peak. The variances are by noise, and by how far another fit differs.
struct PeakTop {
    double place = 0, placeVariance = 0, height = 0, heightVariance = 0;
    CurveResult refusal;
};

PeakTop FindPeakTop(const PeakCurve& curve, const FoundPeak& found);

}  // namespace qel
