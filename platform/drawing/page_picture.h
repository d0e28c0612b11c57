#pragma once

#include <functional>

#include "qellib10/platform/drawing/dc.h"

namespace qel {

/// Draws a page as a picture of its whole sheet on white, like CPreviewDC: texts and lines are where they are on paper.
/// SavePng makes a file of it.
///
/// @code
/// CQelPrintJobDocumentData document;
/// if (!document.CheckAndAddJobFile("sample1.job")) return;
/// CDC printer;
/// if (!printer.CreateDC(nullptr, "PDF", nullptr, nullptr)) return;
/// const auto drawFirst = [&](CDC& dc) { return document.PrintOutMain(&dc, 1, 1) != 0; };
/// CBitmap picture;
/// if (!qel::DrawPagePicture(picture, printer, 150, drawFirst)) return;
/// if (!qel::SavePng(picture, "page1.png", 150)) return;
/// @endcode
///
/// @param picture gets the new bitmap, which replaces its old one
/// @param printer the context that the page is laid out for, of a printer or a file. It gives the size of the sheet and
/// the start of its drawable area; no page is started on it.
/// @param dotsPerInch of the picture, 1 to 9600; sides are rounded to whole pixels
/// @param draw draws the page in the device units of @p printer, and returns whether it could
/// @return 1; 0 if @p draw returns false, with what was drawn so far. 0 and no bitmap for a bad handle, a context
/// without a sheet (a screen's), an invalid resolution, a side outside 1 to 32767 pixels, and if memory runs out
QELLIB10_API int DrawPagePicture(CBitmap& picture, HDC printer, int dotsPerInch, const std::function<bool(CDC&)>& draw);

}  // namespace qel
