#pragma once

#include <cstddef>
#include <optional>

#include "qellib10/curve/end_point.h"
#include "qellib10/evaluation/curve_result.h"

namespace qel {

/// How the end point of a titration is found.
enum class EndPointMethod {
    /// The steepest place, by fits of many lengths; refused wherever strays or noise leave it open: qel::FindEndPoint.
    /// The safest method, and the one to take without a reason for another. Points of CurveOptions play no part, and 5
    /// different x are enough.
    kSteepest,
    /// The largest slope: where the second derivative of the local polynomial around the steepest point is 0.
    kFirstDerivative,
    /// Where the second derivatives at two neighbouring points have different signs, by a straight line between them.
    /// With a window of 3 and degree 2 these are the second differences of textbooks, each at the mean of its readings.
    kSecondDerivative,
    /// Where the curve comes to a fixed signal, as an acid number is titrated to pH 10.
    kFixedValue,
    /// Where the curve crosses the line in the middle between two parallel tangents, one through the readings before
    /// the step and one through those after it; their common slope is that of the least squares.
    kTangents,
    /// The intersection of two straight lines, through readings before and after the bend: conductometric, photometric
    /// and thermometric titrations.
    kLines,
    /// Gran (Analyst 77 (1952) 661): what is left of an ion in all of the volume is proportional to the volume that is
    /// still missing, so a straight line through 10^signal times the volume ends at the equivalence point. Readings
    /// near the step are not needed. Each counts by its relative noise.
    kGran
};

struct EndPointOptions {
    EndPointMethod method = EndPointMethod::kSteepest;
    CurveRange range{};  ///< where it is looked for; for kGran: the readings of the line
    /// The widest window of local polynomials, as for Curve::Smoothed. Narrower ones are taken where a polynomial does
    /// not follow the readings; where none does, as in a sharp step, the readings beside the place: the straight line
    /// between two of them, or their slopes and second differences (a window of 3, degree 2).
    std::size_t window = 7;
    std::size_t degree = 3;        ///< kFirstDerivative needs at least 3, kSecondDerivative 2, others 1
    double level = 0;              ///< of kFixedValue
    CurveRange before{}, after{};  ///< the readings of the lines of kTangents and kLines
    double startVolume = 0;        ///< of kGran: of the sample, in the unit of x
    /// Of kGran: how much the signal changes for ten times the ion that the range has left or in excess. -1 for the pH
    /// of an acid before its end point and 1 after it; 59.16 for millivolts of a silver electrode after its end point.
    double perDecade = -1;
    /// Of kGran, for a weak acid before its end point: its volumes are multiplied by that of the titrant alone.
    bool isWeak = false;
};

/// The end point, and the signal there. The uncertainty is by the noise of the readings; of kLines and kGran by the
/// scatter about the lines. It has a part for how the curve may go between its readings:
///  - of local polynomials, how far the place moves with a wider window, a narrower one and a polynomial of degree + 2;
///    of derivatives also how far the points are apart that are as steep within the noise;
///  - of the straight line between two readings, the places that the straight lines through the readings before and
///    after leave open, each as likely: in a sharp step the whole interval;
///  - of slopes and second differences, the steepest interval by as much as the curve is level beside it;
///  - of kSteepest, an eighth of an interval between readings on either side, which is what made curves show.
/// That of kTangents is also by how far it moves with the half of their readings that is nearer to the step.
struct CurveEndPoint : CurveResult {
    double signal = 0;
    std::optional<EndPoint> steepest = {};  ///< of kSteepest: how it was found
};

/// The shape of a whole curve. w is a width, which shows how sharp the step is.
enum class EquivalenceShape {
    /// y = a + b asinh((x - x0) / w): one ion precipitates or neutralises another one of the same charge, and the
    /// electrode follows its logarithm. Exact where nothing is diluted. 4 parameters.
    kNernst,
    /// y = a + b tanh((x - x0) / w) + c (x - x0): any symmetric step between two slanted levels. 5 parameters.
    kSigmoid
};

/// x0 as the value, and the other parameters. The uncertainty is by the scatter, and by how far x0 moves with the half
/// of the readings that is nearer to it, twice as far where neighbouring readings are on the same side of the shape. A
/// sigmoid that is narrower than the interval between readings at its step may be anywhere in it.
struct EquivalenceFit : CurveResult {
    double level = 0;    ///< a, the signal there
    double height = 0;   ///< b
    double width = 0;    ///< w, above 0
    double slant = 0;    ///< c
    double scatter = 0;  ///< standard deviation of a reading about the fit
};

}  // namespace qel
