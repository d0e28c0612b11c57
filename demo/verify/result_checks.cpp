#include "demo/verify/result_checks.h"

#include "demo/method/method_file.h"
#include "demo/report/report_job.h"
#include "demo/report/trace_job.h"
#include "demo/result/result_file.h"
#include "demo/result/result_table.h"
#include "demo/support/file_names.h"
#include "demo/support/number.h"
#include "demo/support/temporary_file.h"
#include "demo/support/text_file.h"
#include "demo/verify/checks.h"

namespace titration {
namespace {

// Text that did not fit ends with dots.
bool IsShownAs(const std::string& text, std::string shown) {
    if (!shown.ends_with("...")) return shown == text;
    shown.resize(shown.size() - 3);
    return text.starts_with(shown);
}

}  // namespace

std::string CheckMethod(const MadeFiles& made, const std::string& name) {
    const Method method = MethodFile::Read(made.Path(name));
    ParseSettings(method);
    made.RequireAsMade(name);
    const TemporaryFile again;
    MethodFile(again.Path()).Keep(method);
    Require(CQFile::CompareFile(again.Path().c_str(), made.Path(name).c_str()) != 0,
            "has other bytes than its values give");
    return "deciphered, " + std::to_string(method.size()) + " values";
}

std::string CheckVariables(const MadeFiles& made) {
    const std::string path = made.Path("variables.qel");
    const CCalcVariableList variables = LoadVariables(path);
    made.RequireAsMade("variables.qel");
    return std::to_string(variables.GetVariableCount()) + " variables, sealed with " + Shown(SealedSums(path));
}

std::string CheckTable(const MadeFiles& made, const Result& result) {
    const TemporaryFile again;
    const int lines = WriteResultTable(result, again.Path());
    Require(CQFile::CompareFile(again.Path().c_str(), made.Path("result.csv").c_str()) != 0,
            "is not the table of that result");
    made.RequireAsMade("result.csv");
    return std::to_string(lines) + " lines, the table of that result";
}

Titration EvaluateAgain(const MadeFiles& made, DWORD version, const KeptHistory& history, const LogFacts& log) {
    const CCalcVariableList kept = history.Variables(version);
    Require(version <= log.runs.size(), "titration.log does not say what it was computed from");
    const LoggedRun& run = log.runs[version - 1];
    const Method method = MethodFile::Read(made.Path(MethodName(version)));
    Titration again = EvaluateTitration(MethodName(version), method, CurveName(version),
                                        ReadTextFile(made.Path(CurveName(version))), run.table);
    again.settingsFile = run.method;
    again.dataFile = run.curve;
    Require((again.result.variables != kept) == 0,
            "its values are not those that " + MethodName(version) + " and " + CurveName(version) + " give");
    Require(Shown(again.result) == run.result, "has " + Shown(again.result) + ", and titration.log " + run.result);
    return again;
}

std::string CheckTraceFile(const MadeFiles& made, DWORD version, const Result& result) {
    std::string error;
    const std::optional<qel::TraceCheck> check = qel::CheckTrace(ReadBytes(made.Path(TraceName(version))), error);
    if (!check) throw Failure(error);
    Require(check->differences.empty(), check->differences.empty() ? "" : check->differences.front());
    Require(check->computed.Fault() == nullptr, "has no result");
    Require(check->computed.Json() == result.trace.Json(),
            "is another computation than " + MethodName(version) + " and " + CurveName(version) + " give");
    made.RequireAsMade(TraceName(version));
    return check->computed.ResultWithUncertainty() + ", computed again in " +
           Counted(static_cast<long long>(check->computed.Result()->steps.size()), "step") + " with the same digits";
}

std::string CheckHeadline(const MadeFiles& made, DWORD version, const Result& result) {
    CQelPrintJobQueueData job;
    RequireDone(job.LoadJobFile(made.Path(JobName(version)).c_str()), "is not a job file");
    CQelPrintJobCommand command;
    while (command.GetKind() != CQelPrintJobCommand::kText) {
        Require(job.GetBlock().GetNextCommand(command) != 0, "shows nothing");
    }
    const std::string shown(command.GetText());
    Require(IsShownAs(Headline(result), shown), "shows \"" + shown + "\"");
    return "\"" + shown + "\"";
}

std::string PrinterOf(const MadeFiles& made, DWORD version) {
    CQelPrintJobQueueData job;
    if (job.LoadJobFile(made.Path(JobName(version)).c_str()) == 0) return "";
    return std::string(job.GetPageStyle().GetPrinterDevice());
}

void MakeJobAgain(const Titration& titration, DWORD version, const CHistoryRenewInfo& record,
                  const std::string& printerName, const std::string& path, const std::string& picture) {
    ReportPrinter printer(printerName);
    CQelPrintJobQueueData job = MakeReportJob(titration, version, record, printer, picture);
    RequireDone(job.SaveJobFile(path.c_str()), "cannot be made again");
}

void MakeTraceJobAgain(const Result& result, DWORD version, int number, const std::string& printerName,
                       const std::string& path) {
    ReportPrinter printer(printerName);
    std::vector<CQelPrintJobQueueData> jobs = MakeTraceJobs(result, version, printer);
    const auto index = static_cast<std::size_t>(number) - 1;
    Require(index < jobs.size(), "the trace has only " + Counted(static_cast<long long>(jobs.size()), "cell"));
    RequireDone(jobs[index].SaveJobFile(path.c_str()), "cannot be made again");
}

}  // namespace titration
