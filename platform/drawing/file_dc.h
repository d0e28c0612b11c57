#pragma once

#include "qellib10/platform/drawing/drawing_types.h"
#include "qellib10/platform/drawing/page_setup.h"
#include "qellib10/platform/drawing/pdf_info.h"
#include "qellib10/platform/export.h"

using cairo_t = struct _cairo;  // NOLINT: its name

namespace qel {

/// A context whose documents are written to @p path as PDF (ISO 32000), each replacing the file as a whole: StartDoc,
/// StartPage, drawing, EndPage, and so on, EndDoc. Fonts are embedded, texts stay texts. Delete it with DeleteDC.
/// @param info what the documents say about themselves; without a date of their own they have 1 January 2000, see
/// PdfInfo
/// @return null for a page that cannot be drawn on
QELLIB10_API HDC CreatePdfDC(const char* path, const PageSetup& page, const PdfInfo& info = {});

/// The same as SVG 1.1, one page per document; texts stay texts, in fonts that the viewer has.
/// @return null for a side outside 1 to 32767 or a resolution outside 1 to 9600
QELLIB10_API HDC CreateSvgDC(const char* path, const CSize& size, int dotsPerInch = 96);

/// A context that draws through the application's @p cairo, one user unit per device unit, over @p size of them. Thin
/// lines have their exact pixels if user units are whole pixels. The context keeps a reference and restores the state
/// of @p cairo after each drawing. Everything is drawn at the latest when the context is flushed by FlushDC or deleted.
/// Lines of wide pens are strokes of Cairo's: a window that shows long curves with them draws on a picture and shows
/// that, where they take a small part of the time, as qel::DrawingView does.
/// @return null for a null @p cairo, otherwise like CreateSvgDC
QELLIB10_API HDC CreateCairoDC(cairo_t* cairo, const CSize& size, int dotsPerInch = 96);

/// Draws what a context has collected. @return 0 for a bad handle
QELLIB10_API BOOL FlushDC(HDC dc);

}  // namespace qel
