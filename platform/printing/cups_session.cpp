#include "qellib10/platform/printing/cups_session.h"

#include <cups/cups.h>

#include <algorithm>
#include <string>

#include "qellib10/platform/operation.h"
#include "qellib10/platform/printing/pdf_printer.h"
#include "qellib10/platform/text/code_page.h"

namespace qel {
namespace {

using std::chrono::steady_clock;

// libcups asks twice, waits for a second each time, and only then for our limit: a server that never responds takes
// kResponseLimit, another second and kStep in all.
constexpr auto kResponseLimit = std::chrono::milliseconds(2400);
constexpr double kStep = 0.25;  // seconds between two checks of the time
constexpr int kConnectMilliseconds = 1500;
constexpr double kTransferSeconds = 10;

int OnTransferTimeout(http_t*, void*) { return 0; }

}  // namespace

void CupsInfoDeleter::operator()(cups_dinfo_t* info) const noexcept { ::cupsFreeDestInfo(info); }

int CupsSession::HasTimeLeft(http_t*, void* session) {
    return steady_clock::now() < static_cast<CupsSession*>(session)->m_deadline;
}

CupsSession::CupsSession()
    : m_deadline(steady_clock::now() + kResponseLimit),
      m_pHttp(::httpConnect2(::cupsServer(), ::ippPort(), nullptr, AF_UNSPEC, ::cupsEncryption(), 1,
                             kConnectMilliseconds, nullptr)) {
    if (m_pHttp == nullptr) return;
    ::httpSetTimeout(m_pHttp, kStep, HasTimeLeft, this);
    cups_dest_t* queues = nullptr;
    const int count = ::cupsGetDests2(m_pHttp, &queues);
    m_queues = {queues, static_cast<std::size_t>(std::max(count, 0))};
    if (m_queues.empty() || std::ranges::any_of(m_queues, [](const auto& queue) { return queue.is_default != 0; }))
        return;
    // The user's choice is already marked, but not the server's default.
    if (cups_dest_t* const queue = ::cupsGetDest(::cupsGetDefault2(m_pHttp), nullptr, count, queues)) {
        queue->is_default = 1;
    }
}

CupsSession::~CupsSession() {
    ::cupsFreeDests(static_cast<int>(m_queues.size()), m_queues.data());
    ::httpClose(m_pHttp);
}

cups_dest_t* CupsSession::Find(const CString& name) const {
    const auto found =
        std::ranges::find_if(m_queues, [&](const cups_dest_t& queue) { return NameOfQueue(queue) == name; });
    return found != m_queues.end() ? &*found : nullptr;
}

CupsInfo CupsSession::InfoOf(cups_dest_t* queue) const {
    return CupsInfo(queue != nullptr ? ::cupsCopyDestInfo(m_pHttp, queue) : nullptr);
}

bool CupsSession::Refuse(const CString& printer) const {
    if (m_pHttp == nullptr)
        return qel::Refuse(FailureKind::kPrinter, printer.View(), "the print server does not respond") != 0;
    if (Find(printer) == nullptr) return qel::Refuse(FailureKind::kMissing, printer.View(), "no such printer") != 0;
    return qel::Refuse(FailureKind::kPrinter, printer.View(), ::cupsLastErrorString()) != 0;
}

void CupsSession::BeginTransfer() { ::httpSetTimeout(m_pHttp, kTransferSeconds, OnTransferTimeout, nullptr); }

CString NameOfQueue(const cups_dest_t& queue) {
    std::string name = queue.name;
    if (queue.instance != nullptr) name.append("/").append(queue.instance);
    if (name == kPdfPrinterName) name += "@cups";
    return CString(FromUtf8(name));
}

const char* OptionOf(const cups_dest_t& queue, const char* name) {
    const char* const value = ::cupsGetOption(name, queue.num_options, queue.options);
    return value != nullptr ? value : "";
}

}  // namespace qel
