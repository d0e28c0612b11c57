#pragma once

#include <optional>

#include "qellib10/platform/drawing/drawing_types.h"
#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/time/ole_date_time.h"

namespace qel {

/// What a PDF document says about itself. Archives and search programs sort documents by it. Texts are in the code
/// page; an empty one is left out.
///
/// The same pages with the same date give the same bytes. A document without a date of its own takes it from the
/// environment variable SOURCE_DATE_EPOCH (seconds since 1970 in UTC, up to the year 9999; ignored if it is anything
/// else). Without the variable, documents of printers have the time when they are started, in UTC; those of CreatePdfDC
/// have 1 January 2000, so that files made again are equal.
struct PdfInfo {
    CString title;  ///< empty: the name of the document
    CString author;
    CString subject;
    /// When the document was made, in local time: written without a time zone, so that the bytes do not depend on where
    /// they are written. An invalid date counts as none.
    std::optional<COleDateTime> created;
};

/// Sets what the documents that are started on this context from now on say about themselves.
/// CQelPrintJobDocumentData::PrintOut and a new context of CQelPrintJobPageStyle::GetPrinterDC do this themselves. A
/// loop that draws its pages with CQelPrintJobDocumentData::OnPrint must do it before its StartDoc.
/// @return 0 for a bad handle, and for a context whose documents are not PDF
QELLIB10_API BOOL SetPdfInfo(HDC dc, const PdfInfo& info);
/// What the next document of this context will say about itself.
/// @return nothing for a bad handle, and for a context whose documents are not PDF
QELLIB10_API std::optional<PdfInfo> GetPdfInfo(HDC dc);

}  // namespace qel
