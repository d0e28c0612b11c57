#include "demo/keep_result.h"

#include "demo/method/method_file.h"
#include "demo/method/method_ini.h"
#include "demo/report/layout_fingerprint.h"
#include "demo/report/report.h"
#include "demo/report/report_job.h"
#include "demo/report/report_printer.h"
#include "demo/report/trace_job.h"
#include "demo/result/calculation.h"
#include "demo/result/check_sums.h"
#include "demo/result/result_file.h"
#include "demo/result/result_table.h"
#include "demo/result/result_trace.h"
#include "demo/result/run_log.h"
#include "demo/result/titration.h"
#include "demo/support/failure.h"
#include "demo/support/file_names.h"
#include "demo/support/file_step.h"
#include "demo/support/text_file.h"

namespace titration {
namespace {

// Why something is done; without a comment the file that it comes from.
std::string Comment(const Options& options, const std::string& source) {
    if (options.comment.find_first_not_of(' ') != std::string::npos) return options.comment;
    return "from " + std::string(CQFile::GetFilenameFromPath(source.c_str()));
}

struct Evaluated {
    Titration titration;
    std::string measured;  // the text of the data file
    std::string text;      // what to print about the method
};

// Computes a result with the given settings, or with the method that was kept. Settings that give a result become the
// method.
Evaluated EvaluateByMethod(const Options& options, Session& session, ArchiveTrail& trail, MadeFiles& made) {
    MethodFile file(made.Path("method.xml"));
    const bool isKept = options.settings.empty();
    if (isKept && file.Kept().empty()) throw Failure("there is no method yet, so --settings is needed");
    const std::string name = isKept ? "method.xml" : options.settings;
    Log(stage::kMethod + name);
    if (!isKept) RequireOrdinaryFile(name);
    const Method method = isKept ? file.Kept() : ReadMethodIni(name);
    const CQDiffList changes = Differences(file.Kept(), method);
    if (changes.GetCount() > 0 && !session.May(kChangeMethod))
        throw Failure(session.Operator() + " may not change the method");

    Log(stage::kCurve + options.data);
    if (options.table > 0) Log(stage::kTable + std::to_string(options.table));
    RequireOrdinaryFile(options.data);
    const std::string measured = ReadTextFile(options.data);
    const Titration result = EvaluateTitration(name, method, options.data, measured, options.table);
    About(name, [&] { About(result.settings.formulaPlace, [&] { RequireTrace(result.result); }); });
    Log(stage::kResult + Shown(result.result));
    if (changes.GetCount() == 0) return {result, measured, "Method     method.xml, as it was\n"};
    const std::string count = std::to_string(changes.GetCount());
    const std::string what =
        file.Kept().empty() ? "new, " + count + " values\n" : count + " changed\n" + Listed(changes, kIndent);
    const std::string reason = Comment(options, options.settings);
    for (const qel::TrailRecord& change : qel::MethodChanges(changes, trail.User(), reason)) trail.Enter(change);
    file.Keep(method);
    Log("method.xml kept");
    made.Add("method.xml");
    return {result, measured, "Method     method.xml, enciphered: " + what};
}

std::string WriteTexts(const Titration& titration, MadeFiles& made) {
    WriteTextFile(Report(titration), made.Path("report.txt"));
    made.Add("report.txt");
    const int lines = WriteResultTable(titration.result, made.Path("result.csv"));
    made.Add("result.csv");
    return "Written    report.txt, and result.csv with " + std::to_string(lines) + " lines\n";
}

std::string Seal(const CCalcVariableList& variables, ArchiveTrail& trail, MadeFiles& made) {
    const std::string path = made.Path("variables.qel");
    const CCheckDatafile seal = StoreVariables(variables, path);
    made.Add("variables.qel");
    trail.EnterFile(qel::trail_kind::kFileSealed, "variables.qel");
    if (LoadVariables(path) != variables) throw Failure(path + ": differs from what was written");
    constexpr int kChangedByte = 20;
    const CheckSums changed = RequireChangeToBeFound(path, kChangedByte);

    CString text;
    text.Format(
        "Sealed     variables.qel, %d variables, as version %d of %s\n"
        "           %s; read back, equal\n"
        "           a copy with a bit of byte %d changed: %s, so the change is found\n",
        variables.GetVariableCount(), seal.GetVersion(), std::string(seal.GetGUID().GetString()).c_str(),
        Shown(SealedSums(path)).c_str(), kChangedByte, Shown(changed).c_str());
    return std::string(text);
}

// Keeps what is needed to compute the next version again, even if the method or the measured file changes later.
std::string KeepOrigin(DWORD version, const std::string& measured, const qel::Trace& how, ArchiveTrail& trail,
                       MadeFiles& made) {
    const std::string method = MethodName(version), curve = CurveName(version), trace = TraceName(version);
    WriteTextFile(ReadBytes(made.Path("method.xml")), made.Path(method));
    made.Add(method);
    WriteTextFile(measured, made.Path(curve));
    made.Add(curve);
    WriteTextFile(how.Json(), made.Path(trace));
    made.Add(trace);
    trail.EnterFile(qel::trail_kind::kFileSealed, trace);
    return "Kept       " + method + " and " + curve + ", from which it can be computed again\n" + kIndent + trace +
           ", how it was computed, with its hash in the trail\n";
}

const CHistoryRenewInfo& Register(const Options& options, History& history, MadeFiles& made) {
    const CHistoryRenewInfo& record = history.Register(made.Path("variables.qel"), Comment(options, options.data));
    Log(stage::kRegistered + std::to_string(history.Latest()));
    made.Add("renewals.qel");
    return record;
}

std::string KeepTraceJobs(const Result& result, DWORD version, ReportPrinter& printer, const std::string& fingerprint,
                          ArchiveTrail& trail, MadeFiles& made) {
    int number = 0;
    for (CQelPrintJobQueueData& job : MakeTraceJobs(result, version, printer)) {
        const std::string name = TraceJobName(version, ++number);
        if (job.SaveJobFile(made.Path(name).c_str()) == 0)
            throw Failure(made.Path(name) + ": " + Why("cannot be written"));
        made.Add(name, fingerprint);
        trail.EnterFile(qel::trail_kind::kReportPrinted, name);
    }
    return kIndent + TraceJobName(version, 1) + (number > 1 ? " to " + std::to_string(number) : "") +
           " with the trace, from the second page on\n";
}

// The report of the latest version as a print job, and its curve as a picture.
std::string KeepReport(const Titration& titration, DWORD version, const CHistoryRenewInfo& record,
                       ReportPrinter& printer, const std::string& fingerprint, ArchiveTrail& trail, MadeFiles& made) {
    CQelPrintJobQueueData job = MakeReportJob(titration, version, record, printer, made.Path("curve.png"));
    made.Add("curve.png", fingerprint);
    const std::string name = JobName(version);
    if (job.SaveJobFile(made.Path(name).c_str()) == 0) throw Failure(made.Path(name) + ": " + Why("cannot be written"));
    made.Add(name, fingerprint);
    trail.EnterFile(qel::trail_kind::kReportPrinted, name);
    const std::string traces = KeepTraceJobs(titration.result, version, printer, fingerprint, trail, made);
    return "Drawn      curve.png, in one drawing with the report's curve\n"
           "Job        " +
           name + " for printer " + std::string(printer.Style().GetPrinterDevice()) + " with " +
           std::to_string(printer.Style().GetDpi()) + " dots per inch, " +
           std::to_string(job.GetBlock().GetCommandCount()) + " commands\n" + traces;
}

}  // namespace

std::string KeepResult(const Options& options, Session& session, History& history, ArchiveTrail& trail,
                       MadeFiles& made) {
    ReportPrinter printer(options.printer);
    const auto [titration, measured, method] = EvaluateByMethod(options, session, trail, made);
    const std::string fingerprint = LayoutFingerprint(options.printer);
    std::string text = method + Report(titration);
    text += WriteTexts(titration, made);
    text += Seal(titration.result.variables, trail, made);
    text += KeepOrigin(history.Latest() + 1, measured, titration.result.trace, trail, made);
    const CHistoryRenewInfo& record = Register(options, history, made);
    text += "History    variables.qel is in results.hcf " + history.Listed(kIndent);
    return text + KeepReport(titration, history.Latest(), record, printer, fingerprint, trail, made);
}

}  // namespace titration
