#pragma once

#include <memory>
#include <vector>

#include "qellib10/platform/drawing/document_sink.h"
#include "qellib10/platform/drawing/page_setup.h"
#include "qellib10/platform/drawing/pdf_date.h"
#include "qellib10/platform/drawing/vector_surface.h"

namespace qel {

/// Pages of a PDF document (ISO 32000) in a printer's resolution. The bytes are collected in memory and passed on as a
/// whole at the end of the document; a document that is not ended leaves nothing. The same pages with the same date
/// give the same bytes.
class PdfSurface : public VectorSurface {
public:
    PdfSurface(const PageSetup& page, std::unique_ptr<DocumentSink> sink, UndatedPdf undated);
    ~PdfSurface() override;

    int DeviceCaps(int index) const override;
    int StartDoc(const CString& name) override;
    int StartPage() override;
    int EndPage() override;
    int EndDoc() override;
    int AbortDoc() override;
    bool SetPdfInfo(const PdfInfo& info) override;
    const PdfInfo* GetPdfInfo() const override { return &m_info; }

protected:
    cairo_t* Cairo() override;

private:
    struct Document;

    PageSetup m_page;
    std::unique_ptr<DocumentSink> m_pSink;
    UndatedPdf m_undated;
    PdfInfo m_info;
    std::unique_ptr<Document> m_pDocument;  // while a document is open
};

}  // namespace qel
