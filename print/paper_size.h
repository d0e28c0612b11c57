#pragma once

#include <optional>

#include "qellib10/platform/drawing/dc.h"
#include "qellib10/platform/printing/device_mode.h"

namespace qel {

/// Lengths on paper are in tenths of a millimetre.
inline constexpr int kTenthsPerInch = 254;

/// The size of a paper form (codes 2 to 41) in tenths of a millimetre, as page layouts in the field count with it.
/// Several of the forms measured in inches differ from the real sheet.
std::optional<CSize> PaperSizeOf(int form) noexcept;

/// The sheet of a printer's context as the page is read, in tenths of a millimetre; nothing for null, and for a context
/// without a sheet, as that of a picture.
std::optional<CSize> SheetOf(CDC* dc);

/// Gives a mode without a size of its own, whose form has none in layouts either (Letter), the sheet of @p dc.
/// @return false when it has no size then: @p dc has no sheet
bool FillPaperSize(DEVMODE& mode, CDC* dc);

}  // namespace qel
