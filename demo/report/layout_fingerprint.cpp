#include "demo/report/layout_fingerprint.h"

#include <cmath>

#include "demo/report/report_job.h"
#include "demo/report/report_page.h"
#include "demo/report/report_printer.h"
#include "demo/report/temporary_print.h"
#include "demo/report/trace_job.h"
#include "demo/result/check_sums.h"
#include "demo/support/failure.h"
#include "demo/support/file_step.h"
#include "demo/support/temporary_file.h"

namespace titration {
namespace {

Titration FixedTitration() {
    const Method method = {{kVariables, "C", "0.1"},
                           {kVariables, "UNUSED", "2.345678"},
                           {kUncertainties, "C", "certificate 0.001 k 2, 0123456789 (滴定)"},
                           {"result", "end_point", "EP"},
                           {"result", "name", "ACID"},
                           {"result", "formula", "EP * C"},
                           {"result", "unit", "g/L"},
                           {"result", "digits", "3"},
                           {"limits", "high", "9"}};
    std::string curve;
    for (int i = 0; i < 40; ++i) {
        CString line;
        line.Format("%.2f;%.3f\n", i / 2.0, 7 + 4 * std::tanh(i / 2.0 - 10.2));
        curve += std::string(line);
    }
    return EvaluateTitration("sample.ini", method, "sample.csv", curve);
}

CHistoryRenewInfo FixedRecord() {
    CHistoryRenewInfo record;
    record.SetOperator("0123456789 (滴定)");
    record.SetComment("The quick brown fox jumps over the lazy dog");
    return record;
}

std::string CrcOf(const std::string& path) {
    CString text;
    text.Format("%08X", CheckSumsOf(path).crc);
    return std::string(text);
}

}  // namespace

std::string LayoutFingerprint(const std::string& printerName) {
    ReportPrinter printer(printerName);
    const Titration titration = FixedTitration();
    const TemporaryFile job, curve, trace, page;
    const auto save = [](CQelPrintJobQueueData made, const std::string& path) {
        if (made.SaveJobFile(path.c_str()) == 0) throw Failure(path + ": " + Why("cannot be written"));
    };
    save(MakeReportJob(titration, 1, FixedRecord(), printer, curve.Path()), job.Path());
    save(MakeTraceJobs(titration.result, 1, printer).front(), trace.Path());
    ReportPages pages({job.Path(), trace.Path()}, FixedRecord().GetRenewDateTime());
    pages.SavePreview(1, page.Path());
    std::string fingerprint;
    for (const TemporaryFile* file : {&job, &curve, &trace, &page}) fingerprint += CrcOf(file->Path()) + " ";
    return printerName == kPdfPrinter ? fingerprint + CrcOf(TemporaryPrint(pages).Path()) : fingerprint + "no PDF";
}

}  // namespace titration
