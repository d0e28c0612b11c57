#pragma once

#include <optional>

#include "qellib10/platform/drawing/drawing_types.h"
#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/time/ole_date_time.h"

namespace qel {

/// What a PDF document says of itself. Archives and search programs sort documents by it. Texts are in the code page;
/// an empty one is left out.
///
/// The same pages with the same date are the same bytes. A document without a date of its own has that of the
/// environment variable SOURCE_DATE_EPOCH (seconds since 1970 in UTC, up to the year 9999; passed over when it is
/// anything else). Without it, documents of printers have the time when they are started, in UTC; those of CreatePdfDC
/// have 1 January 2000, so that files made again are equal.
struct PdfInfo {
    CString title;  ///< empty: the name of the document
    CString author;
    CString subject;
    /// When the document was made, as the clock showed it: written without a time zone, so that the bytes do not depend
    /// on where they are written. One that is not valid is none.
    std::optional<COleDateTime> created;
};

/// What the documents that are started on this context from now on say of themselves.
/// CQelPrintJobDocumentData::PrintOut and a new context of CQelPrintJobPageStyle::GetPrinterDC do this by themselves. A
/// loop that draws its pages with CQelPrintJobDocumentData::OnPrint has to do it before its StartDoc.
/// @return 0 for a bad handle, and for a context whose documents are not PDF
QELLIB10_API BOOL SetPdfInfo(HDC dc, const PdfInfo& info);
/// What the next document of this context will say of itself.
/// @return nothing for a bad handle, and for a context whose documents are not PDF
QELLIB10_API std::optional<PdfInfo> GetPdfInfo(HDC dc);

}  // namespace qel
