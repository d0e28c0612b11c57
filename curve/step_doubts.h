#pragma once

#include <vector>

#include "qellib10/curve/step_search.h"

namespace qel {

/// What is known of a curve before its end point.
struct Judged {
    TitrationCurve readings;   // in the order of their volumes
    std::vector<bool> strays;  // which of the readings are left out
    double direction = 1, noise = 0, tolerance = 0;
    double backward = 0;  // at most the tolerance; what goes back by more than that is not chance
};

/// The points without the readings that are left out.
CurvePoints KeptPoints(const TitrationCurve& readings, const std::vector<bool>& leftOut);

/// Whether strays near a step leave its place open. A reading next to a stray may be the stray itself: raised readings
/// just before a step look like a low one just after it. Leaves out one to three neighbouring readings in turn (at two
/// places, or besides those that leave the curve, where one place is not enough). Each clean step that results must be
/// at the same place, also when the next reading on either side is left out.
bool IsPlaceOpen(const Judged& curve, const Step& step);

/// Whether a step that few readings lie in is more than @p most from the middle of its rise: a polynomial through
/// uneven steps may bend beside it. Steps that many readings lie in are left to the fit.
bool IsBesideRise(const CurvePoints& points, const Judged& curve, const Step& step, double most);

/// Whether noise could have chosen the step: the search is made again with every reading moved up or down by the noise,
/// many times over, and must come to within @p most of the same volume, and within half an interval at the place where
/// it comes to. The standard error of a fit knows only how far noise moves that fit, not that it may favour another
/// one. Not checked for more than 500 readings.
bool CanNoiseMove(const Judged& curve, const Step& step, double most);

}  // namespace qel
