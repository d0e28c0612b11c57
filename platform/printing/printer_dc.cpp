#include <algorithm>
#include <optional>

#include "qellib10/platform/drawing/device_context.h"
#include "qellib10/platform/drawing/pdf_surface.h"
#include "qellib10/platform/operation.h"
#include "qellib10/platform/printing/print_spooler.h"
#include "qellib10/platform/printing/printer.h"

namespace qel {
namespace {

// A mode's member, if the mode sets it.
int ValueOf(const DEVMODE& mode, DWORD field, short value) {
    return (mode.dmFields & field) != 0 && value > 0 ? value : 0;
}

SIZE ExplicitSize(const DEVMODE& mode) {
    const SIZE size{ValueOf(mode, DM_PAPERWIDTH, mode.dmPaperWidth), ValueOf(mode, DM_PAPERLENGTH, mode.dmPaperLength)};
    return size.cx > 0 && size.cy > 0 ? SIZE{size.cx * 10, size.cy * 10} : SIZE{0, 0};
}

bool IsLandscape(const DEVMODE& mode) {
    return ValueOf(mode, DM_ORIENTATION, mode.dmOrientation) == DMORIENT_LANDSCAPE;
}

const PaperForm* FormOf(const DEVMODE& mode) { return FindPaperForm(ValueOf(mode, DM_PAPERSIZE, mode.dmPaperSize)); }

struct Sheet {
    Medium medium;
    bool isTurned = false;  // the page is turned on the medium
    bool isOther = false;   // not the one that was asked for
};

const Medium* FindNamed(const Printer& printer, const char* name) {
    const auto standard = name != nullptr ? StandardMedium(name) : std::nullopt;
    return standard ? FindMedium(printer.media, standard->size) : nullptr;
}

Sheet SheetFor(const Printer& printer, const DEVMODE& mode) {
    const bool isLandscape = IsLandscape(mode);
    if (const Medium* const medium = FindMedium(printer.media, ExplicitSize(mode))) return {*medium, isLandscape};
    if (const PaperForm* const form = FormOf(mode)) {
        const Medium* medium = FindNamed(printer, form->medium);
        const bool isOther = medium == nullptr;
        if (isOther) medium = FindNamed(printer, form->substitute);
        if (medium != nullptr) return {*medium, form->isTurned != isLandscape, isOther};
    }
    const bool isAsked = ExplicitSize(mode).cx > 0 || ValueOf(mode, DM_PAPERSIZE, mode.dmPaperSize) != 0;
    return {printer.defaultMedium, isLandscape, isAsked};
}

// The left edge of a turned page is at the top of the medium.
PageSetup PageOn(const Sheet& sheet, const SIZE& dotsPerInch) {
    const SIZE size = sheet.medium.size;
    const RECT edges = sheet.medium.margins;
    if (!sheet.isTurned) return {size, dotsPerInch, edges};
    return {{size.cy, size.cx}, dotsPerInch, {edges.top, edges.right, edges.bottom, edges.left}};
}

SIZE ResolutionFor(const Printer& printer, const DEVMODE& mode) {
    const int down = ValueOf(mode, DM_YRESOLUTION, mode.dmYResolution);
    const int across = ValueOf(mode, DM_PRINTQUALITY, mode.dmPrintQuality);
    const auto usable = [](int wanted, int own) {
        return wanted > 0 && wanted <= PageSetup::kFinestResolution ? wanted : own;
    };
    return {usable(across, usable(down, printer.dotsPerInch.cx)), usable(down, usable(across, printer.dotsPerInch.cy))};
}

}  // namespace

std::optional<SIZE> PageOf(const DEVMODE& mode) {
    SIZE sheet = ExplicitSize(mode);
    bool isTurned = IsLandscape(mode);
    if (sheet.cx == 0) {
        const PaperForm* const form = FormOf(mode);
        const auto medium = form != nullptr ? StandardMedium(form->medium) : std::nullopt;
        if (!medium) return std::nullopt;
        sheet = medium->size;
        isTurned = form->isTurned != isTurned;
    }
    return isTurned ? SIZE{sheet.cy, sheet.cx} : sheet;
}

bool HasOtherSheet(HDC printer) {
    const auto context = FindDeviceContext(printer);
    return context && context->HasOtherSheet();
}

}  // namespace qel

BOOL CDC::CreateDC(const char* driver, const char* device, const char* output, const DEVMODE* mode) {
    qel::Operation operation("CDC::CreateDC");
    if (m_hDC != nullptr) return operation.Failed(qel::FailureKind::kState, "", qel::kContextInUse);
    return operation.Ended(Attach(::CreateDC(driver, device, output, mode)));
}

HDC CreateDC(const char*, const char* device, const char*, const DEVMODE* mode) {
    qel::Operation operation("CreateDC");
    if (device == nullptr) {
        qel::RefuseNull("CreateDC");
        return nullptr;
    }
    const DEVMODE wanted = mode != nullptr ? *mode : DEVMODE{};
    const auto printer = qel::FindPrinter(device, qel::ExplicitSize(wanted));
    if (!operation.Ended(printer.has_value())) return nullptr;
    const qel::Sheet sheet = qel::SheetFor(*printer, wanted);
    const qel::PageSetup page = qel::PageOn(sheet, qel::ResolutionFor(*printer, wanted));
    if (!operation.Ended(page.IsDrawable(), qel::FailureKind::kPrinter, "a sheet that cannot be drawn on"))
        return nullptr;

    qel::JobOptions options;
    options.medium = sheet.medium.name;
    options.copies = std::max(1, qel::ValueOf(wanted, DM_COPIES, wanted.dmCopies));
    options.color = static_cast<short>(qel::ValueOf(wanted, DM_COLOR, wanted.dmColor));
    options.duplex = static_cast<short>(qel::ValueOf(wanted, DM_DUPLEX, wanted.dmDuplex));
    auto surface = std::make_unique<qel::PdfSurface>(page, qel::SinkOf(device, options), qel::UndatedPdf::kNow);
    const auto context = std::make_shared<qel::DeviceContext>(std::move(surface));
    if (sheet.isOther) context->SetHasOtherSheet();
    return qel::AddDeviceContext(context);
}
