#pragma once

#include <cstddef>
#include <vector>

#include "qellib10/platform/export.h"

namespace qel {

/// A titration curve as it was measured: one volume and one signal for each reading, in the order of the readings.
struct TitrationCurve {
    std::vector<double> volume;  ///< of the titrant that was added, in any unit
    std::vector<double> signal;  ///< potential, pH or what else was measured; as many as volumes
};

/// A curve in the order of its volumes, each volume once; or what was computed of one.
struct CurvePoints {
    std::vector<double> x;  ///< volumes, rising
    std::vector<double> y;  ///< signals, or what was made of them; as many
};

// Steps to a derivative that can be drawn:
//
//     slope = Differentiate(SmoothByMedian(MergeRepeats(curve)), 7);
//
// They throw DataError for lists that are not of one length, and for values that are not finite.

/// The mean signal of each volume, in the order of the volumes.
QELLIB10_API CurvePoints MergeRepeats(const TitrationCurve& curve);

/// A running median of 3. It removes single strays, and leaves a steady rise or fall as it is. The first and the last
/// point stay.
QELLIB10_API CurvePoints SmoothByMedian(CurvePoints points);

/// The means of @p group neighbouring points each; the last group may have fewer.
/// @param group 0 is taken as 1
QELLIB10_API CurvePoints AverageGroups(const CurvePoints& points, std::size_t group);

/// The slope at each point: that of the cubic polynomial with the least squares through @p run neighbouring points with
/// the point near their middle (Savitzky and Golay's method, for steps of any length).
/// @param run at least 4; a curve of fewer points is one run
/// @return points that determine no cubic are left out; all of them for a shorter run
QELLIB10_API CurvePoints Differentiate(const CurvePoints& points, std::size_t run);

}  // namespace qel
