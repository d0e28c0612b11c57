#include "demo/report/trace_job.h"

#include <qellib10/record.h>

#include "demo/report/point_font.h"
#include "demo/result/result_trace.h"
#include "demo/support/failure.h"
#include "demo/support/file_names.h"
#include "demo/support/file_step.h"

namespace titration {
namespace {

bool IsJapanese() { return qel::TableLanguage() == qel::Language::Japanese; }

std::vector<qel::TraceTable> TablesOf(const Result& result) {
    std::vector<qel::TraceTable> tables =
        result.trace.Tables(IsJapanese() ? qel::TraceLanguage::kJapanese : qel::TraceLanguage::kEnglish);
    const std::string remark = RoundingRemark(result);
    if (!remark.empty()) {
        qel::TraceTable reported;
        reported.title = "Reported: " + Shown(result);
        reported.rows.push_back({"rounded " + remark});
        tables.insert(tables.begin(), reported);
    }
    return tables;
}

}  // namespace

std::vector<CQelPrintJobQueueData> MakeTraceJobs(const Result& result, DWORD version, ReportPrinter& printer) {
    const std::string uncertainty = UncertaintyText(result);
    qel::TablePage page;
    page.headline = "Trace: " + Shown(result) + (uncertainty.empty() ? "" : " " + uncertainty);
    page.remark = "version " + std::to_string(version);
    page.foot = TraceName(version) + ", SHA-256 " + qel::HashText(result.trace.Json());
    page.face = kFace;
    if (IsJapanese()) {
        page.of = " / ";
        page.continued = " (続き)";
    }
    std::vector<CQelPrintJobQueueData> jobs =
        qel::MakeTableJobs(qel::PrintTablesOf(TablesOf(result)), page, printer.Style(), printer.Context());
    if (jobs.empty()) throw Failure("the trace: " + Why("has no space on the page"));
    return jobs;
}

}  // namespace titration
