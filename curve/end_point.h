#pragma once

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "qellib10/curve/points.h"
#include "qellib10/platform/export.h"

namespace qel {

/// The end point of a titration, and how it was found.
struct EndPoint {
    double volume = 0;                ///< where the slope is largest: a zero of the curve's second derivative
    double signal = 0;                ///< the signal there
    double slope = 0;                 ///< the slope there, signal per volume; negative on a falling curve
    double noise = 0;                 ///< standard deviation of a reading, estimated from the curve itself
    std::size_t points = 0;           ///< points that the local fit was made through
    std::vector<std::size_t> strays;  ///< readings that were left out, by their index in the curve
    /// The volumes of the readings before and after it, where these are more than three usual intervals apart.
    std::optional<std::pair<double, double>> gap;
};

/// Finds the end point of a rising or falling titration curve. Taking the largest difference between two readings
/// instead finds the largest noise or the nearest stray reading, and nothing in that result shows it; so an end point
/// that is not certain is refused here. One kind of error cannot be seen: a stray reading in the step that lies between
/// its neighbours (docs/end_points.md).
///
/// @code
/// qel::TitrationCurve curve;
/// curve.volume = {0, 1, 2, 3, 4, 4.5, 5, 5.5, 6, 7, 8, 9, 10};
/// curve.signal = {2.9, 3.0, 3.2, 3.4, 3.7, 4.1, 7.0, 9.9, 10.3, 10.6, 10.8, 11.0, 11.1};
/// try {
///     std::printf("%.3f mL\n", qel::FindEndPoint(curve).volume);
/// } catch (const qel::DataError& refusal) {
///     std::puts(refusal.what());
/// }
/// @endcode
///
/// Readings may be in any order and at any intervals; those at one volume are averaged. Readings that leave the curve
/// and come back to it within three readings are left out first. The end point is the steepest inflection of cubic
/// polynomials that are fitted by least squares through every run of 5, 6, 7 ... of the other points, which smooths as
/// Savitzky and Golay do, but for uneven steps. Short runs serve clean curves, and long ones noisy curves. Where so few
/// readings are in the step that no cubic follows it, the slopes between them decide.
///
/// It is refused where there are fewer than 5 different volumes, where no step is clear of the noise, where the curve
/// begins or ends in its step or comes back over it, where strays leave its place open, and where noise could move it
/// by more than half an interval between readings. It is made for readings of electrodes with up to one percent of
/// noise; a curve with two steps gives the steeper one.
///
/// The same curve gives the same result in every call. 100,000 readings take less than a second. Any thread may call
/// it.
///
/// @throws DataError for a curve without a certain end point, with one sentence for the person at the instrument that
/// says what to do; for lists that are not of one length; for numbers that are not finite or beyond 1e30
QELLIB10_API EndPoint FindEndPoint(const TitrationCurve& curve);

/// The points that an end point was found in: without the strays, each volume once.
/// @throws DataError as FindEndPoint, and for strays that @p curve does not have
QELLIB10_API CurvePoints UsedPoints(const TitrationCurve& curve, const EndPoint& endPoint);

}  // namespace qel
