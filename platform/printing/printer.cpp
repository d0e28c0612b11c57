#include "qellib10/platform/printing/printer.h"

#include <algorithm>
#include <iterator>

#include "qellib10/platform/printing/cups_printer.h"
#include "qellib10/platform/printing/pdf_printer.h"
#include "qellib10/platform/text/multibyte.h"

namespace qel {

DEVMODE Printer::OwnMode() const {
    DEVMODE mode{};
    CopyBounded(reinterpret_cast<char*>(mode.dmDeviceName), entry.name, CCHDEVICENAME - 1);
    mode.dmSpecVersion = 0x0401;
    mode.dmSize = sizeof mode;
    SetPaper(mode, defaultMedium.size);
    // A form that is written into this mode later must take precedence over a size.
    mode.dmFields = DM_ORIENTATION | DM_PAPERSIZE | DM_COPIES | DM_PRINTQUALITY | DM_YRESOLUTION;
    mode.dmPaperWidth = mode.dmPaperLength = 0;
    mode.dmOrientation = DMORIENT_PORTRAIT;
    mode.dmCopies = 1;
    mode.dmPrintQuality = static_cast<short>(dotsPerInch.cx);
    mode.dmYResolution = static_cast<short>(dotsPerInch.cy);
    return mode;
}

std::vector<PrinterEntry> ListPrinters() {
    std::vector<PrinterEntry> printers = {PdfPrinter().entry};
    std::ranges::move(CupsPrinters(), std::back_inserter(printers));
    if (std::ranges::none_of(printers, &PrinterEntry::isDefault)) printers.front().isDefault = true;
    const auto isOwn = [](const PrinterEntry& printer) { return !printer.isConnection; };
    std::stable_partition(printers.begin(), printers.end(), isOwn);  // clang 14 cannot compile the ranges form
    return printers;
}

std::optional<Printer> FindPrinter(const CString& name, const SIZE& custom) {
    return name == kPdfPrinterName ? PdfPrinter(custom) : FindCupsPrinter(name, custom);
}

std::unique_ptr<DocumentSink> SinkOf(const CString& printer, const JobOptions& options) {
    return printer == kPdfPrinterName ? PdfPrinterSink() : CupsSink(printer, options);
}

}  // namespace qel
