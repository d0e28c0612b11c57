#include "qellib10/platform/printing/print_dialog.h"

#include <algorithm>
#include <atomic>
#include <string_view>

#include "qellib10/platform/operation.h"
#include "qellib10/platform/printing/print_info.h"
#include "qellib10/platform/printing/print_spooler.h"
#include "qellib10/platform/printing/printer.h"

namespace {

std::atomic<qel::PrintDialogProvider*> theProvider = nullptr;

}  // namespace

namespace qel {

PrintDialogProvider::~PrintDialogProvider() = default;

PrintDialogProvider* SetPrintDialogProvider(PrintDialogProvider* provider) noexcept {
    return theProvider.exchange(provider);
}

}  // namespace qel

CPrintDialog::CPrintDialog(BOOL setupOnly, DWORD flags, HWND parent)
    : m_dwFlags(setupOnly ? flags | PD_PRINTSETUP : flags & ~DWORD{PD_PRINTSETUP}), m_hParent(parent) {}

CPrintDialog::~CPrintDialog() = default;

int CPrintDialog::DoModal() {
    qel::Operation running("CPrintDialog::DoModal");
    const auto refused = [&](qel::FailureKind kind, std::string_view why) {
        running.Failed(kind, "", why);
        return IDCANCEL;
    };
    qel::PrintDialogProvider* const provider = theProvider.load();
    if (provider == nullptr) return refused(qel::FailureKind::kState, "the application has no print dialog");
    const auto choice = provider->Choose({m_hParent, m_dwFlags, m_szDevice, m_mode});
    if (!choice || choice->device.IsEmpty()) return refused(qel::FailureKind::kRefused, "cancelled");
    if (!SelectPrinter(choice->device, choice->mode ? &*choice->mode : nullptr)) {
        m_szDevice = choice->device;
        m_szDriver.Empty();
        m_szPort.Empty();
        m_mode = choice->mode;
        m_hDC = nullptr;
    }
    return running.Ended(IDOK);
}

BOOL CPrintDialog::GetDefaults() {
    qel::Operation operation("CPrintDialog::GetDefaults");
    const auto printers = qel::ListPrinters();
    const auto found = std::ranges::find_if(printers, &qel::PrinterEntry::isDefault);
    return operation.Ended(found != printers.end() && SelectPrinter(found->name));
}

BOOL CPrintDialog::SelectPrinter(const char* device, const DEVMODE* mode) {
    qel::Operation operation("CPrintDialog::SelectPrinter");
    const auto printer = qel::FindPrinter(device);
    if (!operation.Ended(printer.has_value())) return 0;
    m_mode = mode != nullptr ? *mode : printer->OwnMode();
    m_szDevice = printer->entry.name;
    m_szDriver = printer->entry.driver;
    m_szPort = printer->entry.port;
    m_hDC = nullptr;
    return 1;
}

HDC CPrintDialog::CreatePrinterDC() {
    qel::Operation running("CPrintDialog::CreatePrinterDC");
    return m_hDC = running.Ended(CreateDC(m_szDriver, m_szDevice, m_szPort, m_mode ? &*m_mode : nullptr));
}

CPrintInfo::CPrintInfo() : m_pPD(new CPrintDialog(0)) {}

CPrintInfo::~CPrintInfo() { delete m_pPD; }
