#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "qellib10/evaluation/curve_result.h"
#include "qellib10/evaluation/end_point_options.h"
#include "qellib10/evaluation/peak_options.h"
#include "qellib10/platform/export.h"

namespace qel {

/// One reading of a curve.
struct CurvePoint {
    double x = 0;  ///< time, volume or what else was changed, in any unit
    double y = 0;  ///< the signal
};

/// What becomes of readings at the same x.
enum class RepeatedReadings {
    kAverage,  ///< their mean, which counts as often as it was read
    kLast      ///< the last one, as of an electrode that settles
};

struct CurveOptions {
    RepeatedReadings repeats = RepeatedReadings::kAverage;
    bool leaveOutStrays = true;
    double noise = 0;  ///< standard deviation of a reading, where it is known; 0: it is estimated from the curve
};

struct CurveData;

/// A measured curve, and what laboratories read off it. Each value comes with the standard uncertainty that the noise
/// of the readings gives it, or with the reason why there is none. What no reading shows is not in it: a balance or
/// burette that is wrong, or a window so wide that it flattens a peak.
///
/// @code
/// const std::vector<qel::CurvePoint> readings = {{0, 4.1}, {1, 4.3}, {2, 4.4}, {3, 4.6}, {4, 4.9}, {5, 5.0},
/// {6, 5.2}}; const qel::CurveResult drift = qel::Curve::Of(readings).Drift(); if (drift) std::printf("%.3f +- %.3f per
/// minute\n", *drift.value, drift.uncertainty); else std::puts(drift.reason.c_str());
/// @endcode
///
/// Readings may be in any order and at uneven steps. Where nothing was measured for ten times the usual interval there
/// is a pause: no window reaches over it. Strays are left out: at most three readings in a row that leave the curve and
/// come back to it, the first or last reading far from the others, and those far from others at the same x. A peak of
/// at most three readings looks the same. A curve that gives nothing refuses each operation with the same reason.
///
/// Nothing is thrown but std::bad_alloc. The same readings give the same digits in each run. Any thread may use a
/// curve, several at a time too; copies share the readings.
class QELLIB10_API Curve {
public:
    /// @param points of at least 6 different x
    static Curve Of(std::span<const CurvePoint> points, const CurveOptions& options = {});

    CurveRefusal Refusal() const;       ///< kNone where the curve can be evaluated
    const std::string& Reason() const;  ///< the sentence for it

    /// What is evaluated: without strays, each x once, rising.
    std::vector<CurvePoint> Points() const;
    /// The readings that were left out as strays, by their index among those given; rising. Also of readings that were
    /// kept, for CurveOptions::leaveOutStrays.
    const std::vector<std::size_t>& Strays() const;
    /// The x before and after each pause.
    std::vector<CurveRange> Pauses() const;
    /// The standard deviation of a reading, estimated by how far each is from a cubic polynomial through its neighbours
    /// (the median of these distances), and by readings at the same x. At least that of rounding to their last digit.
    /// Too large for a curve with few readings that bends everywhere.
    double Noise() const;
    double NoiseDegreesOfFreedom() const;  ///< infinite where the noise was given

    /// Each point on the polynomial with the least squares through @p window neighbouring points (Savitzky and Golay,
    /// Anal. Chem. 36 (1964) 1627), here also for uneven steps. Near the ends and pauses, windows are not centred. A
    /// part between pauses that has fewer points than the window is one window, and is left out if it has too few for
    /// the polynomial.
    /// @param degree 0 to 8
    /// @param window more than the degree
    CurveValues Smoothed(std::size_t window, std::size_t degree) const;
    /// As Smoothed, a derivative. @param order 1 to the degree
    CurveValues Derivative(std::size_t order, std::size_t window, std::size_t degree) const;

    /// The slope of the straight line with the least squares. The uncertainty is by the readings' own scatter about it,
    /// at least that of their last digit.
    /// Refused for fewer than 3 points, and where the readings bend: a square term is above 6 standard errors and
    /// changes the slope from one end to the other by more than a tenth.
    CurveResult Drift(const CurveRange& range = {}) const;

    /// The baseline below the signal, at each point.
    CurveValues Baseline(const BaselineOptions& options) const;
    /// The peaks of a chromatogram or spectrum, above a baseline.
    CurvePeaks Peaks(const PeakOptions& options) const;

    /// The end point of a titration, by one of the methods.
    CurveEndPoint EndPointBy(const EndPointOptions& options) const;
    /// The equivalence point of a titration, by the least squares of a whole curve's shape. It needs no reading at the
    /// step itself. Refused where the shape does not follow the readings: their scatter about it is above a thousandth
    /// of their range and above 3 times the noise, or 1.3 times where neighbouring readings are on the same side of it.
    /// At least 3 points more than the shape has parameters.
    EquivalenceFit FitEquivalence(EquivalenceShape shape, const CurveRange& range = {}) const;

private:
    explicit Curve(std::shared_ptr<const CurveData> data) : m_data(std::move(data)) {}

    std::shared_ptr<const CurveData> m_data;
};

}  // namespace qel
