#include "qellib10/print/page_style.h"

#include <cstring>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/printing/print_spooler.h"
#include "qellib10/platform/wrapped.h"
#include "qellib10/print/paper_size.h"
#include "qellib10/runtime/system_info.h"

namespace {

constexpr int kMillimetreUnit = 2;
constexpr const char* kConvert = "CQelPrintJobPageStyle::ConvertMillimetreToPixel";
constexpr std::string_view kNoResolution = "the page style has no resolution";

void Convert(LONG& value, int dpi) noexcept { value = qel::WrappedProduct(value, dpi) / qel::kTenthsPerInch; }

// The first printer whose name starts with @p device, because device modes cut names. Local ones come before
// connections.
CString FullPrinterName(const CString& device) {
    const DWORD flags = PRINTER_ENUM_LOCAL | (CSystemInfo::IsWinNT() ? DWORD{PRINTER_ENUM_CONNECTIONS} : 0);
    std::vector<BYTE> buffer;
    DWORD needed = 0, count = 0;
    while (!EnumPrinters(flags, nullptr, 1, buffer.data(), static_cast<DWORD>(buffer.size()), &needed, &count)) {
        if (needed <= buffer.size()) return device;
        buffer.resize(needed);
    }
    for (DWORD i = 0; i < count; ++i) {
        PRINTER_INFO_1 info;
        std::memcpy(&info, buffer.data() + i * sizeof info, sizeof info);
        if (CString(info.pName).View().starts_with(device.View())) return info.pName;
    }
    return device;
}

class OpenedPrinter {
public:
    explicit OpenedPrinter(const CString& name) { OpenPrinter(name, &m_hPrinter, nullptr); }
    ~OpenedPrinter() { ClosePrinter(m_hPrinter); }
    OpenedPrinter(const OpenedPrinter&) = delete;
    OpenedPrinter& operator=(const OpenedPrinter&) = delete;

    struct Details {
        CString driver;
        DEVMODE mode;
    };
    std::optional<Details> Ask() const {
        if (m_hPrinter == nullptr) return std::nullopt;
        DWORD needed = 0;
        GetPrinter(m_hPrinter, 2, nullptr, 0, &needed);
        std::vector<BYTE> buffer(needed);
        PRINTER_INFO_2 info;
        if (needed < sizeof info || !GetPrinter(m_hPrinter, 2, buffer.data(), needed, &needed)) return std::nullopt;
        std::memcpy(&info, buffer.data(), sizeof info);
        return Details{info.pDriverName, *info.pDevMode};
    }

private:
    HANDLE m_hPrinter = nullptr;
};

// Uses a context without owning it.
class BorrowedDC : public CDC {
public:
    explicit BorrowedDC(HDC dc) { Attach(dc); }
    ~BorrowedDC() override { Detach(); }
};

}  // namespace

namespace qel {

void OwnedDC::Reset(HDC dc) noexcept {
    if (m_hDC != nullptr) ::DeleteDC(m_hDC);
    m_hDC = dc;
}

HDC OwnedDC::Release() noexcept { return std::exchange(m_hDC, nullptr); }

}  // namespace qel

CQelPrintJobPageStyle::CQelPrintJobPageStyle() { Initialize(); }

CQelPrintJobPageStyle::~CQelPrintJobPageStyle() = default;

int CQelPrintJobPageStyle::Initialize() {
    m_szPrinterDriverName.Empty();
    m_nUnit = kMillimetreUnit;
    m_nDpi = 0;
    m_sizePaper = CSize();
    m_nPaperForm = DMPAPER_A4;
    m_nPaperDirection = DMORIENT_PORTRAIT;
    m_nTopMargin = m_nBottomMargin = m_nLeftMargin = m_nRightMargin = 0;
    m_szStyleName.Empty();
    m_PdfInfo.reset();
    m_sizePrintBlock = CSize(1, 1);
    m_nPrintDirection = 1;
    m_SelectedPrinterDC.Reset();
    return 1;
}

void CQelPrintJobPageStyle::SetStyleName(UINT stringId) { m_szStyleName.LoadString(stringId); }

int CQelPrintJobPageStyle::GetPageBlocks() const {
    return qel::WrappedProduct(m_sizePrintBlock.cx, m_sizePrintBlock.cy);
}

int CQelPrintJobPageStyle::ConvertMillimetreToPixel(CRect& rect) const {
    if (m_nDpi < 1) return qel::Operation(kConvert).Failed(qel::FailureKind::kState, "", kNoResolution);
    for (LONG* const value : {&rect.left, &rect.top, &rect.right, &rect.bottom}) Convert(*value, m_nDpi);
    return 1;
}

int CQelPrintJobPageStyle::ConvertMillimetreToPixel(CPoint& point) const {
    if (m_nDpi < 1) return qel::Operation(kConvert).Failed(qel::FailureKind::kState, "", kNoResolution);
    Convert(point.x, m_nDpi);
    Convert(point.y, m_nDpi);
    return 1;
}

int CQelPrintJobPageStyle::SelectPrinter() {
    return qel::AsResult("CQelPrintJobPageStyle::SelectPrinter", [&] {
        CPrintDialog dialog(0, PD_ALLPAGES | PD_NOPAGENUMS | PD_NOSELECTION | PD_HIDEPRINTTOFILE | PD_USEDEVMODECOPIES);
        if (dialog.DoModal() != IDOK) return 0;
        m_SelectedPrinterDC.Reset();
        m_szPrinterDevice = dialog.GetDeviceName();
        m_szPrinterDriverName = dialog.GetDriverName();
        m_szPrinterPort = dialog.GetPortName();
        DEVMODE* const mode = dialog.GetDevMode();
        if (mode == nullptr)
            return qel::Refuse(qel::FailureKind::kPrinter, m_szPrinterDevice.View(), "the printer has no settings");
        qel::OwnedDC made;
        made.Reset(dialog.CreatePrinterDC());
        if (made.Get() == nullptr) return 0;
        BorrowedDC context(made.Get());
        ReadDevMode(*mode, &context);
        m_SelectedPrinterDC.Reset(made.Release());
        return 1;
    });
}

int CQelPrintJobPageStyle::MovePrinterDC(CQelPrintJobPageStyle& other) {
    if (other.GetSelectedPrinterDC() == nullptr)
        return qel::Operation("CQelPrintJobPageStyle::MovePrinterDC")
            .Failed(qel::FailureKind::kState, "", "no printer is selected");
    if (this != &other) m_SelectedPrinterDC.Reset(other.m_SelectedPrinterDC.Release());
    return 1;
}

HDC CQelPrintJobPageStyle::GetPrinterDC() {
    CDC context;
    const int isThere = qel::AsResult("CQelPrintJobPageStyle::GetPrinterDC", [&] {
        auto printer = OpenedPrinter(m_szPrinterDevice).Ask();
        if (!printer) return false;
        DEVMODE& mode = printer->mode;
        mode.dmFields |= DM_ORIENTATION | DM_PAPERSIZE;
        mode.dmOrientation = static_cast<short>(m_nPaperDirection);
        mode.dmPaperSize = static_cast<short>(m_nPaperForm);
        if (!context.CreateDC(printer->driver, m_szPrinterDevice, nullptr, &mode)) return false;
        if (m_PdfInfo) qel::SetPdfInfo(context, *m_PdfInfo);
        ReadDevMode(mode, &context);
        return true;
    });
    return isThere != 0 ? context.Detach() : nullptr;
}

int CQelPrintJobPageStyle::GetPrinterFromDC(CDC* dc, CPrintInfo* info) {
    const DEVMODE* const mode = info != nullptr && info->m_pPD != nullptr ? info->m_pPD->GetDevMode() : nullptr;
    return qel::AsResult("CQelPrintJobPageStyle::GetPrinterFromDC", [&] {
        if (mode == nullptr) return qel::Refuse(qel::FailureKind::kPrinter, "", "the printer has no settings");
        ReadDevMode(*mode, dc);
        return 1;
    });
}

void CQelPrintJobPageStyle::ReadDevMode(DEVMODE mode, CDC* dc) {
    const bool hasSize = qel::FillPaperSize(mode, dc);
    GetDevMode(&mode, dc);
    // A size set by hand is already as the page is read: it is not turned again for each page.
    const bool isTurned = mode.dmOrientation == DMORIENT_LANDSCAPE && m_sizePaper.cx < m_sizePaper.cy;
    if (!hasSize && isTurned) std::swap(m_sizePaper.cx, m_sizePaper.cy);
    m_nUnit = kMillimetreUnit;
}

void CQelPrintJobPageStyle::GetDevMode(DEVMODE* devMode, CDC* dc) {
    if (devMode == nullptr) return;
    const auto* const name = reinterpret_cast<const char*>(devMode->dmDeviceName);
    m_szPrinterDevice = FullPrinterName(CString(std::string_view(name, ::strnlen(name, CCHDEVICENAME))));
    if (devMode->dmYResolution >= 1) {
        m_nDpi = devMode->dmYResolution;
    } else {
        m_nDpi = dc != nullptr ? dc->GetDeviceCaps(LOGPIXELSY) : 0;
    }
    if (devMode->dmPaperWidth != 0 && devMode->dmPaperLength != 0) {
        m_sizePaper = CSize(devMode->dmPaperWidth, devMode->dmPaperLength);
    } else {
        m_sizePaper = qel::PaperSizeOf(devMode->dmPaperSize).value_or(m_sizePaper);
        if (devMode->dmOrientation == DMORIENT_LANDSCAPE) std::swap(m_sizePaper.cx, m_sizePaper.cy);
    }
    m_nPaperForm = devMode->dmPaperSize;
    m_nPaperDirection = devMode->dmOrientation;
}

CSize CQelPrintJobPageStyle::GetPaperSizeOn(CDC* dc) const {
    if (m_sizePaper.cx > 0 && m_sizePaper.cy > 0) return m_sizePaper;
    const std::optional<CSize> form = qel::PaperSizeOf(m_nPaperForm);
    if (!form) return qel::SheetOf(dc).value_or(m_sizePaper);
    return m_nPaperDirection == DMORIENT_LANDSCAPE ? CSize(form->cy, form->cx) : *form;
}

bool CQelPrintJobPageStyle::operator==(const CQelPrintJobPageStyle& other) const {
    const auto compared = [](const CQelPrintJobPageStyle& style) {
        return std::tie(style.m_szPrinterDriverName, style.m_szPrinterDevice, style.m_szPrinterPort, style.m_nUnit,
                        style.m_nDpi, style.m_sizePaper, style.m_nPaperForm, style.m_nPaperDirection,
                        style.m_nTopMargin, style.m_nBottomMargin, style.m_nLeftMargin, style.m_nRightMargin,
                        style.m_szStyleName, style.m_sizePrintBlock, style.m_nPrintDirection);
    };
    return compared(*this) == compared(other);
}
