#include "demo/report/report_page.h"

#include "demo/report/report_printer.h"
#include "demo/support/failure.h"
#include "demo/support/file_names.h"
#include "demo/support/file_step.h"

namespace titration {
namespace {

constexpr int kPreviewDotsPerInch = 144;  // a screen has 96

void StartPage(std::vector<std::string>& paths) {
    while (paths.size() % kReportsPerPage != 0) paths.emplace_back();
}

void AddTrace(const MadeFiles& made, DWORD version, std::vector<std::string>& paths) {
    for (int number = 1; !made.FingerprintOf(TraceJobName(version, number)).empty(); ++number)
        paths.push_back(made.Path(TraceJobName(version, number)));
}

// Without empty cells at the end.
std::vector<std::string> Whole(std::vector<std::string> paths) {
    while (!paths.empty() && paths.back().empty()) paths.pop_back();
    return paths;
}

}  // namespace

std::vector<std::string> JobPaths(const MadeFiles& made, DWORD first, DWORD last) {
    std::vector<std::string> paths;
    for (DWORD version = first; version <= last; ++version) paths.push_back(made.Path(JobName(version)));
    StartPage(paths);
    for (DWORD version = first; version <= last; ++version) AddTrace(made, version, paths);
    return Whole(std::move(paths));
}

std::vector<std::string> SignedJobPaths(const MadeFiles& made, DWORD version) {
    std::vector<std::string> paths = {made.Path(JobName(version)), made.Path(SignatureJobName(version))};
    StartPage(paths);
    AddTrace(made, version, paths);
    return Whole(std::move(paths));
}

int PagesOf(const std::vector<std::string>& jobPaths) {
    return (static_cast<int>(jobPaths.size()) + kReportsPerPage - 1) / kReportsPerPage;
}

ReportPages::ReportPages(const std::vector<std::string>& jobPaths, const COleDateTime& made) {
    for (const std::string& path : jobPaths) {
        CQelPrintJobQueueData job;
        if (path.empty()) {
            job.GetPageStyle() = m_document.GetPageStyle();
            m_document.CheckAndAddJobFile(job);
            continue;
        }
        if (job.LoadJobFile(path.c_str()) == 0) throw Failure(path + ": " + Why("cannot be read"));
        if (m_document.CheckAndAddJobFile(job) == 0)
            throw Failure(path + ": is for another printer than the first one");
        if (job.GetPageStyle().GetPageBlocks() < 1) throw Failure(path + ": has no place on a page");
    }
    qel::PdfInfo info;
    info.created = made;
    m_document.SetPdfInfo(info);
    // A job file has only the form's code; the paper size comes with a context of the printer.
    const std::string name = PrinterName();
    if (!m_printer.Attach(m_document.GetPageStyle().GetPrinterDC()))
        throw Failure("the printer \"" + name + "\": " + Why("is not there"));
}

int ReportPages::Count() const {
    const int blocksPerPage = m_document.GetPageStyle().GetPageBlocks();
    return (m_document.GetBlockCount() - 1) / blocksPerPage + 1;
}

void ReportPages::SavePreview(int number, const std::string& path) {
    CBitmap picture;
    const auto draw = [&](CDC& dc) { return m_document.PrintOutMain(&dc, number, 1) != 0; };
    if (qel::DrawPagePicture(picture, m_printer, kPreviewDotsPerInch, draw) == 0)
        throw Failure(path + ": " + Why("the page cannot be drawn"));
    if (qel::SavePng(picture, path.c_str(), kPreviewDotsPerInch) == 0)
        throw Failure(path + ": " + Why("cannot be written"));
}

void ReportPages::Print() {
    if (m_document.PrintOut() == 0)
        throw Failure("the printer \"" + PrinterName() + "\": " + Why("does not take the reports"));
}

}  // namespace titration
