#pragma once

#include "live_curve.h"

namespace viewer {

enum class Printing { kCancelled, kDone, kFailed };

/// Lets the user choose a printer and its paper, and prints the curve as it is shown, over the width of the page.
/// @param curve its points at the moment when the dialog is closed
Printing PrintCurve(const LiveCurve& curve);

}  // namespace viewer
