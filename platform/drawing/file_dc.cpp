#include "qellib10/platform/drawing/file_dc.h"

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/drawing/cairo_surface.h"
#include "qellib10/platform/drawing/device_context.h"
#include "qellib10/platform/drawing/pdf_surface.h"
#include "qellib10/platform/drawing/svg_surface.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/replacement.h"

namespace qel {
namespace {

class FileSink : public DocumentSink {
public:
    explicit FileSink(const char* path) : m_szPath(path) {}

    bool Take(const CString&, std::span<const std::byte> bytes) override {
        return AsResult([&] {
                   Replacement target(m_szPath.View());
                   WriteFully(target.File(), bytes, m_szPath.View());
                   target.Commit();
                   return 1;
               }) != 0;
    }

private:
    CString m_szPath;
};

HDC ContextOver(std::unique_ptr<Surface> surface) {
    return AddDeviceContext(std::make_shared<DeviceContext>(std::move(surface)));
}

bool IsDrawable(const CSize& size, int dotsPerInch) {
    return size.cx > 0 && size.cy > 0 && size.cx <= PixelBuffer::kLongestSide && size.cy <= PixelBuffer::kLongestSide &&
           dotsPerInch > 0 && dotsPerInch <= PageSetup::kFinestResolution;
}

HDC Refused(Operation& operation) {
    operation.Failed(FailureKind::kArgument, "", "a null pointer, or a size or resolution that cannot be drawn on");
    return nullptr;
}

}  // namespace

HDC CreatePdfDC(const char* path, const PageSetup& page, const PdfInfo& info) {
    Operation operation("qel::CreatePdfDC");
    if (path == nullptr || !page.IsDrawable()) return Refused(operation);
    auto surface = std::make_unique<PdfSurface>(page, std::make_unique<FileSink>(path), UndatedPdf::kYear2000);
    surface->SetPdfInfo(info);
    return operation.Ended(ContextOver(std::move(surface)));
}

BOOL SetPdfInfo(HDC dc, const PdfInfo& info) {
    const auto context = FindDeviceContext(dc);
    return context && context->Flushed().SetPdfInfo(info);
}

std::optional<PdfInfo> GetPdfInfo(HDC dc) {
    const auto context = FindDeviceContext(dc);
    const PdfInfo* const info = context ? context->Flushed().GetPdfInfo() : nullptr;
    return info != nullptr ? std::optional(*info) : std::nullopt;
}

HDC CreateSvgDC(const char* path, const CSize& size, int dotsPerInch) {
    Operation operation("qel::CreateSvgDC");
    if (path == nullptr || !IsDrawable(size, dotsPerInch)) return Refused(operation);
    auto surface = std::make_unique<SvgSurface>(size, dotsPerInch, std::make_unique<FileSink>(path));
    return operation.Ended(ContextOver(std::move(surface)));
}

HDC CreateCairoDC(cairo_t* cairo, const CSize& size, int dotsPerInch) {
    Operation operation("qel::CreateCairoDC");
    if (cairo == nullptr || !IsDrawable(size, dotsPerInch)) return Refused(operation);
    return operation.Ended(ContextOver(std::make_unique<CairoSurface>(cairo, size, dotsPerInch)));
}

BOOL FlushDC(HDC dc) {
    Operation operation("qel::FlushDC");
    const auto context = FindDeviceContext(dc);
    if (!context) return operation.Failed(FailureKind::kArgument, "", "not a device context");
    context->Flushed();
    return operation.Ended(1);
}

}  // namespace qel
