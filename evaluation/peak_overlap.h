#pragma once

#include "qellib10/evaluation/peak_reader.h"

namespace qel {

/// What peaks beside a peak add to it, and what it loses to them, by how both fall to the valley between. Nothing shows
/// how much of the signal is whose, so that both are standard uncertainties.
class PeakOverlap {
public:
    PeakOverlap(const PeakCurve& curve, const FoundPeak& found);

    double OfArea() const;
    /// Of the signal at a place within the peak.
    double At(double place) const;

private:
    struct Valley {
        double place = 0, height = 0;
        double tail = 0;    // in which the peak would fall to 1/e after the valley
        double beside = 0;  // in which the peak beside falls to 1/e before the valley
    };

    std::vector<Valley> m_valleys;
};

}  // namespace qel
