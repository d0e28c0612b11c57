#pragma once

#include <optional>

#include "qellib10/platform/drawing/dc.h"
#include "qellib10/platform/printing/device_mode.h"

namespace qel {

/// Lengths on paper are in tenths of a millimetre.
inline constexpr int kTenthsPerInch = 254;

/// The size of a paper form (codes 2 to 41) in tenths of a millimetre, as used by page layouts in the field. For
/// several of the forms measured in inches it differs from the real sheet.
std::optional<CSize> PaperSizeOf(int form) noexcept;

/// The sheet of a printer's context as the page is read, in tenths of a millimetre; nothing for null, and for a context
/// without a sheet, such as a picture's.
std::optional<CSize> SheetOf(CDC* dc);

/// Sets the sheet of @p dc in a mode that has no size, and whose form has none in layouts either (Letter).
/// @return false if it then has no size: @p dc has no sheet
bool FillPaperSize(DEVMODE& mode, CDC* dc);

}  // namespace qel
