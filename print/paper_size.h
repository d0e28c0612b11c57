#pragma once

#include <optional>

#include "qellib10/platform/drawing/geometry.h"

namespace qel {

/// The size of a paper form (codes 2 to 41) in tenths of a millimetre, as page layouts in the field count with it.
/// Several of the forms measured in inches differ from the real sheet.
std::optional<CSize> PaperSizeOf(int form) noexcept;

}  // namespace qel
