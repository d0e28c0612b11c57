#pragma once

#include <cstddef>
#include <vector>

#include "qellib10/evaluation/curve_result.h"

namespace qel {

enum class BaselineMethod {
    kZero,  ///< the signal is one already
    kLine,  ///< the straight line with the least squares through the readings of two ranges
    /// A smooth curve through the readings that are not in peaks, by asymmetric least squares (Eilers, Anal. Chem. 75
    /// (2003) 3631). Readings up to 3 times the noise above it count in full, so that it is in the noise and not below.
    kAsymmetric
};

struct BaselineOptions {
    static constexpr double kNowhere = std::numeric_limits<double>::infinity();

    BaselineMethod method = BaselineMethod::kLine;
    /// Of kLine: where the curve has nothing but its baseline; at least 3 readings together.
    CurveRange before{kNowhere, kNowhere}, after{kNowhere, kNowhere};
    /// Of kAsymmetric: how smooth, above 0. For even steps that of Eilers; 10^2 to 10^9 are usual.
    double smoothness = 1e6;
    /// Of kAsymmetric: the weight of a reading in a peak, where others have 1; above 0, below 0.5.
    double asymmetry = 0.001;
};

struct PeakOptions {
    BaselineOptions baseline{};
    std::size_t window = 7, degree = 3;  ///< of the local polynomials that find peaks, as for Curve::Smoothed
    double leastHeight =
        0;  ///< above the baseline and the valleys beside; 0: 6 standard uncertainties of the smoothed curve
};

/// A peak above the baseline. Uncertainties are by the noise of readings and baseline, and by how far the value moves
/// with other fits, with a peak that overlaps, and with a baseline of ten times the smoothness or a tenth. Where a
/// value does not exist it is refused, and the others are valid.
struct CurvePeak {
    /// Where the smoothed curve comes to the baseline, but not nearer to the top than 1.7 times the place where it has
    /// a twentieth of the height; or where it is lowest to the next peak.
    double start = 0, end = 0;
    /// Of the top: the largest value of the polynomial of degree 4 through the readings of the top third. With fewer
    /// than 8 readings above half of the height, or in much noise, of the parabola through the logarithms of the upper
    /// half; how far other shapes differ is in the uncertainty. Refused below 4 readings above half of the height.
    CurveResult position;
    CurveResult height;  ///< there, above the baseline
    CurveResult area;    ///< from the start to the end, by the trapezoids of the readings
    CurveResult width;   ///< at half of the height, by windows of about a standard deviation of the peak
    /// To the next peak: 1.18 (t2 - t1) / (w1 + w2), with the widths at half height (USP <621>, Ph. Eur. 2.2.46).
    CurveResult resolution;
    /// The symmetry factor: the width at a twentieth of the height, over twice the part of it before the top (USP
    /// <621>). Refused where that is below 3 standard deviations of a reading.
    CurveResult tailing;
};

/// The peaks of a curve in their order; or why there are none.
struct CurvePeaks {
    std::vector<CurvePeak> peaks;
    CurveRefusal refusal = CurveRefusal::kNone;
    std::string reason{};
    /// Where readings were left out as strays that are as high as a peak: one of at most three readings looks the same.
    std::vector<double> strays{};
};

}  // namespace qel
