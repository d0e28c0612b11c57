// From a measured titration curve to a result that is kept: a user logs on, the method is read and kept enciphered, the
// end point is found, the user's formula computed over named values, rounded and compared with its limits. Report,
// table and sealed values are written, registered as a new version with its operator, and logged; the curve is drawn
// into a report that is kept as a print job. Any version can be taken out again, and reports are printed three to a
// page.

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

#include <qellib10/qellib10.h>

#include "calculation.h"
#include "csv_table.h"
#include "determination.h"
#include "end_point.h"
#include "failure.h"
#include "file_step.h"
#include "history.h"
#include "method_file.h"
#include "method_ini.h"
#include "options.h"
#include "report.h"
#include "report_job.h"
#include "report_page.h"
#include "report_printer.h"
#include "result_file.h"
#include "result_table.h"
#include "session.h"
#include "settings.h"
#include "text_file.h"

namespace titration {
namespace {

constexpr const char* kIndent = "           ";

void Log(const std::string& line) { CLog::LogOut(0, line.c_str()); }

// The folder for the results, made when missing, with a log in it that is told of failures too.
CString OpenOutput(const std::string& out) {
    const CString folder = OnFile(out, [&] { return qel::FullPath(out); });
    if (CQFile::CreateDirectories(folder) == 0) throw Failure(out + ": cannot be made");
    const CString log = CQFile::BuildFilePath(folder, "titration.log");
    // Said at once: each message would wait for the file for seconds.
    OnFile(out + "/titration.log",
           [&] { CFile(log, CFile::modeCreate | CFile::modeNoTruncate | CFile::modeWrite | CFile::shareDenyNone); });
    CLog::SetLogFile(log);
    return folder;
}

std::string In(const CString& folder, const std::string& name) {
    return std::string(CQFile::BuildFilePath(folder, name.c_str()));
}

std::string LogOn(Session& session) {
    const std::string user = session.Operator();
    Log("logged on " + user);
    const char* const role = session.IsFirst()     ? ", from now on the administrator"
                             : session.IsManager() ? ", an administrator"
                                                   : "";
    return "User       " + user + role + "\n";
}

Determination Titrate(const std::string& methodName, const Method& method, const std::string& dataName) {
    Determination made;
    made.settingsFile = methodName;
    made.dataFile = dataName;
    made.settings = About(methodName, [&] { return ParseSettings(method); });
    Log("curve " + dataName);
    const std::string data = ReadTextFile(dataName);
    made.curve =
        About(dataName, [&] { return ReadCurve(data, made.settings.volumeColumn, made.settings.signalColumn); });
    made.endPoint = About(dataName, [&] { return FindEndPoint(made.curve); });
    made.result = About(methodName, [&] { return Calculate(made.settings, made.endPoint.volume); });
    Log("result " + made.result.name + " = " + made.result.text + " " + made.result.unit);
    return made;
}

// Computes a result, by the settings that are given or the method that is kept. Settings that give a result are the
// method from then on.
std::pair<Determination, std::string> TitrateByMethod(const Options& options, const CString& folder, Session& session) {
    MethodFile file(In(folder, "method.xml"));
    const bool isKept = options.settings.empty();
    if (isKept && file.Kept().empty()) throw Failure("there is no method yet, so --settings is needed");
    const std::string name = isKept ? "method.xml" : options.settings;
    Log("method " + name);
    const Method method = isKept ? file.Kept() : About(name, [&] { return ReadMethodIni(name); });
    const CQDiffList changes = Differences(file.Kept(), method);
    if (changes.GetCount() > 0 && !session.May(kChangeMethod))
        throw Failure(session.Operator() + " may not change the method");

    const Determination made = Titrate(name, method, options.data);
    if (changes.GetCount() == 0) return {made, "Method     method.xml, as it was\n"};
    const std::string count = std::to_string(changes.GetCount());
    const std::string what =
        file.Kept().empty() ? "new, " + count + " values\n" : count + " changed\n" + Listed(changes, kIndent);
    file.Keep(method);
    Log("method.xml kept");
    return {made, "Method     method.xml, enciphered: " + what};
}

// @return what was made, one file a line
std::string WriteFiles(const Determination& made, const std::string& report, const CString& folder) {
    WriteTextFile(report, In(folder, "report.txt"));
    const int lines = WriteResultTable(made.result, In(folder, "result.csv"));

    const CCalcVariableList& variables = made.result.variables;
    const std::string archive = In(folder, "variables.qel");
    const CCheckDatafile seal = StoreVariables(variables, archive);
    if (LoadVariables(archive) != variables) throw Failure(archive + ": differs from what was written");
    constexpr int kChangedByte = 20;
    RequireChangeToBeFound(archive, kChangedByte);

    CString text;
    text.Format(
        "Made       report.txt\n"
        "           result.csv, %d lines\n"
        "           variables.qel, %d variables, sealed as version %d of %s\n"
        "Checked    variables.qel: read back and equal, the seal fits\n"
        "           a copy with a bit of byte %d changed: the seal does not fit, so the change is found\n",
        lines, variables.GetVariableCount(), seal.GetVersion(), std::string(seal.GetGUID().GetString()).c_str(),
        kChangedByte);
    return std::string(text);
}

const CHistoryRenewInfo& Register(const Options& options, const CString& folder, Session& session, History& history) {
    const std::string comment = options.comment.empty()
                                    ? "from " + std::string(CQFile::GetFilenameFromPath(options.data.c_str()))
                                    : options.comment;
    const CHistoryRenewInfo& record = history.Register(In(folder, "variables.qel"), session.Operator(), comment);
    Log("registered variables.qel as version " + std::to_string(history.Latest()));
    return record;
}

// The report of a version as a print job, and the curve in it as a picture.
std::string KeepReport(const Determination& made, DWORD version, const CHistoryRenewInfo& record,
                       ReportPrinter& printer, const CString& folder) {
    CQelPrintJobQueueData job = MakeReportJob(made, version, record, printer, In(folder, "curve.png"));
    const std::string path = ReportJobPath(folder, version);
    if (job.SaveJobFile(path.c_str()) == 0) throw Failure(path + ": cannot be written");
    const std::string name(CQFile::GetFilenameFromPath(path.c_str()));
    return "Report     " + name + " for printer " + std::string(printer.Style().GetPrinterDevice()) +
           ", its curve in curve.png\n";
}

std::string Determine(const Options& options, const CString& folder, Session& session, History& history) {
    ReportPrinter printer(options.printer);
    const auto [made, method] = TitrateByMethod(options, folder, session);
    const std::string report = Report(made);
    const std::string files = WriteFiles(made, report, folder);
    const CHistoryRenewInfo& record = Register(options, folder, session, history);
    const std::string version = std::to_string(history.Latest());
    return method + report + files + "History    results.hcf: variables.qel as version " + version + ", " +
           Described(record) + "\n" + KeepReport(made, history.Latest(), record, printer, folder);
}

std::string TakeOut(DWORD version, const CString& folder, History& history) {
    const std::string name = "version-" + std::to_string(version) + ".qel";
    const CHistoryRenewInfo& record = history.TakeOut(version, In(folder, name));
    Log("took out " + name);
    std::string text = "Taken out  " + name + ", of " + std::to_string(history.Latest()) + " in results.hcf\n" +
                       kIndent + Described(record) + "\n";
    const CCalcVariableList variables = LoadRenamedVariables(In(folder, name));
    CCalcVariable variable;
    for (int i = 0; variables.GetVariableData(i, &variable) != 0; ++i) {
        CString value;
        value.Format("%s = %.10g\n", static_cast<const char*>(variable.m_szName), variable.m_dValue);
        text += kIndent + std::string(value);
    }
    return text;
}

std::string Print(int count, const CString& folder, const History& history) {
    const auto reports = static_cast<DWORD>(count);
    if (reports > history.Latest())
        throw Failure("there are no " + std::to_string(count) + " reports, but " + std::to_string(history.Latest()));
    ReportPages pages(folder, history.Latest() - reports + 1, history.Latest());
    std::string text;
    for (int page = 1; page <= pages.Count(); ++page) {
        const std::string name = "page-" + std::to_string(page) + ".png";
        pages.SavePreview(page, In(folder, name));
        text += "Preview    " + name + "\n";
    }
    pages.Print();
    const std::string done =
        std::to_string(count) + (count == 1 ? " report" : " reports") + " on printer " + pages.PrinterName();
    Log("printed " + done);
    return text + "Printed    " + done + "\n";
}

void Run(const Options& options) {
    const CString folder = OpenOutput(options.out);
    ::setenv("QELLIB10_PDF_DIR", options.out.c_str(), 0);  // what the printer "PDF" writes
    try {
        Session session(In(folder, "users.db"), options.user, options.password);
        std::string text = LogOn(session);
        History history(folder);
        text += options.takeOut > 0 ? TakeOut(static_cast<DWORD>(options.takeOut), folder, history)
                : options.print > 0 ? Print(options.print, folder, history)
                                    : Determine(options, folder, session, history);
        std::printf("%sLogged     titration.log; all in %s\n", text.c_str(), options.out.c_str());
    } catch (const Failure& failure) {
        Log(std::string("failed: ") + failure.what());
        throw;
    }
}

}  // namespace
}  // namespace titration

int main(int argc, char** argv) {
    qel::SetCodePage(qel::kCodePageUtf8);  // as terminals and files here are
    try {
        titration::Run(titration::ParseOptions(argc, argv));
        return 0;
    } catch (const titration::Failure& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
