#include <cups/cups.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "qellib10/platform/printing/cups_printer.h"
#include "qellib10/platform/printing/cups_session.h"
#include "qellib10/platform/printing/document_name.h"
#include "qellib10/platform/text/code_page.h"

namespace qel {
namespace {

constexpr std::size_t kLongestTitle = 255, kBlock = 64 * 1024;

// The pages are already laid out: the user's settings for the queue must not turn or scale them.
constexpr std::array<std::string_view, 8> kLayout = {"copies",        "fit-to-page",     "media",
                                                     "media-col",     "natural-scaling", "orientation-requested",
                                                     "print-scaling", "scaling"};

class Options {
public:
    Options(const cups_dest_t& queue, const JobOptions& job) {
        for (int i = 0; i < queue.num_options; ++i) {
            const cups_option_t& option = queue.options[i];
            if (std::ranges::find(kLayout, option.name) == kLayout.end()) Add(option.name, option.value);
        }
        if (!job.medium.empty()) Add(CUPS_MEDIA, job.medium.c_str());
        Add("print-scaling", "none");
        if (job.copies > 1) Add(CUPS_COPIES, std::to_string(job.copies).c_str());
        if (job.color == DMCOLOR_MONOCHROME) Add(CUPS_PRINT_COLOR_MODE, CUPS_PRINT_COLOR_MODE_MONOCHROME);
        if (job.color == DMCOLOR_COLOR) Add(CUPS_PRINT_COLOR_MODE, CUPS_PRINT_COLOR_MODE_COLOR);
        if (job.duplex == DMDUP_SIMPLEX) Add(CUPS_SIDES, CUPS_SIDES_ONE_SIDED);
        if (job.duplex == DMDUP_VERTICAL) Add(CUPS_SIDES, CUPS_SIDES_TWO_SIDED_PORTRAIT);
        if (job.duplex == DMDUP_HORIZONTAL) Add(CUPS_SIDES, CUPS_SIDES_TWO_SIDED_LANDSCAPE);
    }
    ~Options() { ::cupsFreeOptions(m_nCount, m_pFirst); }
    Options(const Options&) = delete;
    Options& operator=(const Options&) = delete;

    int Count() const { return m_nCount; }
    cups_option_t* First() const { return m_pFirst; }

private:
    void Add(const char* name, const char* value) { m_nCount = ::cupsAddOption(name, value, m_nCount, &m_pFirst); }

    int m_nCount = 0;
    cups_option_t* m_pFirst = nullptr;
};

bool IsDone(ipp_status_t status) { return status < IPP_STATUS_REDIRECTION_OTHER_SITE; }

bool Write(http_t* http, std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const auto block = bytes.first(std::min(bytes.size(), kBlock));
        const auto* const data = reinterpret_cast<const char*>(block.data());
        if (::cupsWriteRequestData(http, data, block.size()) != HTTP_STATUS_CONTINUE) return false;
        bytes = bytes.subspan(block.size());
    }
    return true;
}

class Sink : public DocumentSink {
public:
    Sink(const CString& printer, const JobOptions& options) : m_szPrinter(printer), m_options(options) {}

    bool Take(const CString& name, std::span<const std::byte> bytes) override {
        CupsSession session;
        cups_dest_t* const queue = session.Find(m_szPrinter);
        const CupsInfo info = session.InfoOf(queue);
        if (!info) return session.Refuse(m_szPrinter);
        http_t* const http = session.Http();
        const std::string title = Printable(ToUtf8(name.View()), kLongestTitle);
        const Options options(*queue, m_options);
        int job = 0;
        if (!IsDone(
                ::cupsCreateDestJob(http, queue, info.get(), &job, title.c_str(), options.Count(), options.First()))) {
            return session.Refuse(m_szPrinter);
        }
        session.BeginTransfer();
        const bool isSent = ::cupsStartDestDocument(http, queue, info.get(), job, title.c_str(), CUPS_FORMAT_PDF, 0,
                                                    nullptr, 1) == HTTP_STATUS_CONTINUE &&
                            Write(http, bytes) && IsDone(::cupsFinishDestDocument(http, queue, info.get()));
        if (isSent) return true;
        session.Refuse(m_szPrinter);
        ::cupsCancelDestJob(http, queue, job);
        return false;
    }

private:
    CString m_szPrinter;
    JobOptions m_options;
};

}  // namespace

std::unique_ptr<DocumentSink> CupsSink(const CString& printer, const JobOptions& options) {
    return std::make_unique<Sink>(printer, options);
}

}  // namespace qel
