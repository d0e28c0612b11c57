#include "qellib10/platform/drawing/pdf_surface.h"

#include <cairo-pdf.h>

#include <new>
#include <utility>

#include "qellib10/platform/text/code_page.h"

namespace qel {
namespace {

constexpr double kPointsPerInch = 72, kHundredthsPerInch = 2540;

cairo_status_t Append(void* document, const unsigned char* bytes, unsigned int count) {
    const auto data = std::as_bytes(std::span(bytes, count));
    auto& file = *static_cast<std::vector<std::byte>*>(document);
    try {
        file.insert(file.end(), data.begin(), data.end());
    } catch (const std::bad_alloc&) {
        return CAIRO_STATUS_NO_MEMORY;
    }
    return CAIRO_STATUS_SUCCESS;
}

void Describe(cairo_surface_t* surface, const CString& name, const PdfInfo& info, const PdfDate& date) {
    const auto set = [&](cairo_pdf_metadata_t field, const std::string& text) {
        if (!text.empty()) cairo_pdf_surface_set_metadata(surface, field, text.c_str());
    };
    set(CAIRO_PDF_METADATA_CREATE_DATE, date.Iso());
    set(CAIRO_PDF_METADATA_TITLE, ToUtf8(info.title.IsEmpty() ? name.View() : info.title.View()));
    set(CAIRO_PDF_METADATA_AUTHOR, ToUtf8(info.author.View()));
    set(CAIRO_PDF_METADATA_SUBJECT, ToUtf8(info.subject.View()));
}

}  // namespace

struct PdfSurface::Document {
    Document(const CString& documentName, const PageSetup& page, const PdfInfo& info, UndatedPdf undated)
        : name(documentName), date(info, undated) {
        surface.reset(cairo_pdf_surface_create_for_stream(Append, &bytes,
                                                          page.sheet.cx * kPointsPerInch / kHundredthsPerInch,
                                                          page.sheet.cy * kPointsPerInch / kHundredthsPerInch));
        Describe(surface.get(), name, info, date);
    }
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    struct Destroy {
        void operator()(cairo_surface_t* owned) const { cairo_surface_destroy(owned); }
        void operator()(cairo_t* owned) const { cairo_destroy(owned); }
    };

    CString name;
    PdfDate date;
    std::vector<std::byte> bytes;
    std::unique_ptr<cairo_surface_t, Destroy> surface;  // goes before the bytes that it may still write to
    std::unique_ptr<cairo_t, Destroy> cairo;            // of the current page
    int pages = 0;
};

PdfSurface::PdfSurface(const PageSetup& page, std::unique_ptr<DocumentSink> sink, UndatedPdf undated)
    : m_page(page), m_pSink(std::move(sink)), m_undated(undated) {}

PdfSurface::~PdfSurface() = default;

int PdfSurface::DeviceCaps(int index) const {
    const CSize sheet = m_page.SheetDots(), drawable = m_page.DrawableDots();
    const CRect margins = m_page.MarginDots();
    switch (index) {
        case TECHNOLOGY:
            return DT_RASPRINTER;
        case HORZSIZE:
            return (m_page.sheet.cx - m_page.margins.left - m_page.margins.right) / 100;
        case VERTSIZE:
            return (m_page.sheet.cy - m_page.margins.top - m_page.margins.bottom) / 100;
        case HORZRES:
            return drawable.cx;
        case VERTRES:
            return drawable.cy;
        case BITSPIXEL:
            return 24;
        case PLANES:
            return 1;
        case LOGPIXELSX:
            return m_page.dotsPerInch.cx;
        case LOGPIXELSY:
            return m_page.dotsPerInch.cy;
        case PHYSICALWIDTH:
            return sheet.cx;
        case PHYSICALHEIGHT:
            return sheet.cy;
        case PHYSICALOFFSETX:
            return margins.left;
        case PHYSICALOFFSETY:
            return margins.top;
        default:
            return 0;
    }
}

cairo_t* PdfSurface::Cairo() { return m_pDocument ? m_pDocument->cairo.get() : nullptr; }

int PdfSurface::StartDoc(const CString& name) {
    if (m_pDocument || !m_pSink->Begin(name)) return -1;
    m_pDocument = std::make_unique<Document>(name, m_page, m_info, m_undated);
    return 1;
}

int PdfSurface::StartPage() {
    if (!m_pDocument || m_pDocument->cairo != nullptr) return -1;
    m_pDocument->cairo.reset(cairo_create(m_pDocument->surface.get()));
    cairo_t* const cairo = m_pDocument->cairo.get();
    cairo_scale(cairo, kPointsPerInch / m_page.dotsPerInch.cx, kPointsPerInch / m_page.dotsPerInch.cy);
    const CRect margins = m_page.MarginDots();
    cairo_translate(cairo, margins.left, margins.top);
    return 1;
}

int PdfSurface::EndPage() {
    if (Cairo() == nullptr) return -1;
    Flush();
    cairo_show_page(m_pDocument->cairo.get());
    const bool isWhole = cairo_status(m_pDocument->cairo.get()) == CAIRO_STATUS_SUCCESS;
    m_pDocument->cairo.reset();
    ++m_pDocument->pages;
    return isWhole ? 1 : -1;
}

int PdfSurface::EndDoc() {
    if (!m_pDocument) return -1;
    const std::unique_ptr<Document> document = std::move(m_pDocument);
    if (document->cairo != nullptr) return -1;  // a page that was not ended is not a page
    if (document->pages == 0) return 1;
    cairo_surface_finish(document->surface.get());
    if (cairo_surface_status(document->surface.get()) != CAIRO_STATUS_SUCCESS) return -1;
    document->date.WriteInto(document->bytes);
    return m_pSink->Take(document->name, document->bytes) ? 1 : -1;
}

int PdfSurface::AbortDoc() {
    if (!m_pDocument) return -1;
    m_pDocument.reset();
    return 1;
}

bool PdfSurface::SetPdfInfo(const PdfInfo& info) {
    m_info = info;
    return true;
}

}  // namespace qel
