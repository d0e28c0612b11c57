#pragma once

#include "qellib10/platform/drawing/dc.h"

namespace qel {

/// A box of logical units in device units of the surface that is drawn on. A preview takes in the last row and column
/// too, which its scale would else round away.
CRect ClipBox(CDC& dc, CRect box);

}  // namespace qel
