#include "qellib10/platform/drawing/pdf_surface.h"

#include <cairo-pdf.h>

#include <new>
#include <utility>

#include "qellib10/platform/text/code_page.h"

namespace qel {
namespace {

constexpr double kPointsAnInch = 72, kHundredthsAnInch = 2540;
// The same pages are the same bytes, whenever they are printed.
constexpr const char* kCreationDate = "2000-01-01T00:00:00Z";

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

}  // namespace

struct PdfSurface::Document {
    Document(const CString& documentName, const PageSetup& page) : name(documentName) {
        surface = cairo_pdf_surface_create_for_stream(Append, &bytes, page.sheet.cx * kPointsAnInch / kHundredthsAnInch,
                                                      page.sheet.cy * kPointsAnInch / kHundredthsAnInch);
        cairo_pdf_surface_set_metadata(surface, CAIRO_PDF_METADATA_CREATE_DATE, kCreationDate);
        cairo_pdf_surface_set_metadata(surface, CAIRO_PDF_METADATA_TITLE, ToUtf8(name.View()).c_str());
    }
    ~Document() {
        if (cairo != nullptr) cairo_destroy(cairo);
        cairo_surface_destroy(surface);  // before the bytes that it may still write to
    }
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    CString name;
    std::vector<std::byte> bytes;
    cairo_surface_t* surface = nullptr;
    cairo_t* cairo = nullptr;  // of the page that is begun
    int pages = 0;
};

PdfSurface::PdfSurface(const PageSetup& page, std::unique_ptr<DocumentSink> sink)
    : m_page(page), m_pSink(std::move(sink)) {}

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
            return m_page.dotsAnInch.cx;
        case LOGPIXELSY:
            return m_page.dotsAnInch.cy;
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

cairo_t* PdfSurface::Cairo() { return m_pDocument ? m_pDocument->cairo : nullptr; }

int PdfSurface::StartDoc(const CString& name) {
    if (m_pDocument || !m_pSink->Begin(name)) return -1;
    m_pDocument = std::make_unique<Document>(name, m_page);
    return 1;
}

int PdfSurface::StartPage() {
    if (!m_pDocument || m_pDocument->cairo != nullptr) return -1;
    cairo_t* const cairo = m_pDocument->cairo = cairo_create(m_pDocument->surface);
    cairo_scale(cairo, kPointsAnInch / m_page.dotsAnInch.cx, kPointsAnInch / m_page.dotsAnInch.cy);
    const CRect margins = m_page.MarginDots();
    cairo_translate(cairo, margins.left, margins.top);
    return 1;
}

int PdfSurface::EndPage() {
    if (Cairo() == nullptr) return -1;
    Flush();
    cairo_show_page(m_pDocument->cairo);
    const bool isWhole = cairo_status(m_pDocument->cairo) == CAIRO_STATUS_SUCCESS;
    cairo_destroy(std::exchange(m_pDocument->cairo, nullptr));
    ++m_pDocument->pages;
    return isWhole ? 1 : -1;
}

int PdfSurface::EndDoc() {
    if (!m_pDocument) return -1;
    const std::unique_ptr<Document> document = std::move(m_pDocument);
    if (document->cairo != nullptr) return -1;  // a page that is not ended is no page
    if (document->pages == 0) return 1;
    cairo_surface_finish(document->surface);
    if (cairo_surface_status(document->surface) != CAIRO_STATUS_SUCCESS) return -1;
    return m_pSink->Take(document->name, document->bytes) ? 1 : -1;
}

int PdfSurface::AbortDoc() {
    if (!m_pDocument) return -1;
    m_pDocument.reset();
    return 1;
}

}  // namespace qel
