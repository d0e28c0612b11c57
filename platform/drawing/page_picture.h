#pragma once

#include <functional>

#include "qellib10/platform/drawing/dc.h"

namespace qel {

/// Draws a page as a picture of its whole sheet on white, as CPreviewDC shows it: texts and lines have the places that
/// they have on paper. SavePng makes a file of it.
///
///     CBitmap picture;
///     qel::DrawPagePicture(picture, printer, 150, [&](CDC& dc) { return document.PrintOutMain(&dc, 1, 1) != 0; });
///
/// @param picture takes the new bitmap in place of what it had
/// @param printer the context that the page is laid out for, of a printer or a file. It tells the size of the sheet and
///   where its drawable area begins, and no page is begun on it.
/// @param dotsPerInch of the picture, 1 to 9600; sides are rounded to whole pixels
/// @param draw draws the page in the device units of @p printer, and answers whether it could
/// @return 1, or what is drawn so far and 0 when @p draw answers false. 0 and no bitmap for a bad handle, a context
///   without a sheet (a screen's), a resolution that is none, and a side outside 1 to 32767 pixels; also without memory
QELLIB10_API int DrawPagePicture(CBitmap& picture, HDC printer, int dotsPerInch, const std::function<bool(CDC&)>& draw);

}  // namespace qel
