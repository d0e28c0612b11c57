#pragma once

#include "qellib10/platform/drawing/gdi_object.h"
#include "qellib10/platform/export.h"

namespace qel {

/// Writes a bitmap as a PNG picture (ISO/IEC 15948) of @p dotsPerInch (96: a screen), replacing the file as a whole:
/// with a palette if it has at most 256 colours, else in 24 bits. The same pixels give the same bytes.
/// @return 1; 0 if there is no bitmap, for a resolution outside 1 to 9600, and if the file cannot be written; the old
/// file then stays as it was
QELLIB10_API int SavePng(const CBitmap& bitmap, const char* path, int dotsPerInch = 96);

}  // namespace qel
