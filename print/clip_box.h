#pragma once

#include "qellib10/platform/drawing/dc.h"

namespace qel {

/// Converts a box from logical units to device units of the surface. A preview also includes the last row and column,
/// which its scale would otherwise round away.
CRect ClipBox(CDC& dc, CRect box);

}  // namespace qel
