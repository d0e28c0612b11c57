// From a measured titration curve to a result that is kept. A user logs on; the method is read and kept enciphered; the
// end point is found; the user's formula is computed with named values, rounded and compared with its limits. Report,
// table and sealed values are written, registered as a new version with its operator, and logged. The curve is drawn
// into a report that is kept as a print job (keep_result.cpp). Any version can be taken out again, reports are printed
// three to a page, and all files can be checked later from the files alone (verify/verify.cpp).

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <qellib10/qellib10.h>

#include "demo/attack/attack.h"
#include "demo/keep_result.h"
#include "demo/options.h"
#include "demo/record/people.h"
#include "demo/record/signed_report.h"
#include "demo/report/layout_fingerprint.h"
#include "demo/report/report.h"
#include "demo/report/report_page.h"
#include "demo/result/history.h"
#include "demo/result/made_files.h"
#include "demo/result/renewals.h"
#include "demo/result/result_file.h"
#include "demo/result/run_log.h"
#include "demo/result/session.h"
#include "demo/support/failure.h"
#include "demo/support/file_names.h"
#include "demo/support/file_step.h"
#include "demo/support/number.h"
#include "demo/support/progress.h"
#include "demo/verify/verify.h"

namespace titration {
namespace {

std::string DescribedUser(Session& session) {
    const std::string user = session.Operator();
    Log("logged on " + user);
    const char* const role = session.IsFirst()     ? ", from now on the administrator"
                             : session.IsManager() ? ", an administrator"
                                                   : "";
    return "User       " + user + role + "\n";
}

std::string TakeOut(DWORD version, History& history, ArchiveTrail& trail, MadeFiles& made) {
    const std::string name = TakenOutName(version);
    const CHistoryRenewInfo& record = history.TakeOut(version, made.Path(name), "to look at it");
    made.Add(name);
    Log(stage::kTookOut + name);
    trail.EnterFile(qel::trail_kind::kExport, name);
    std::string text =
        "History    results.hcf " + history.Listed(kIndent) + "Taken out  " + name + ", " + Described(record) + "\n";
    const CCalcVariableList variables = LoadVariables(made.Path(name));
    CCalcVariable variable;
    for (int i = 0; variables.GetVariableData(i, &variable) != 0; ++i) {
        CString value;
        value.Format("%s = %.10g\n", variable.m_szName.GetString(), variable.m_dValue);
        text += kIndent + std::string(value);
    }
    return text;
}

// @return what follows the printer's name
std::string PrintIn(ReportPages& pages, const std::string& fingerprint, ArchiveTrail& trail, MadeFiles& made) {
    const std::vector<std::string> before = made.Matching(kAllPdfs);
    pages.Print();
    std::string into;
    for (const std::string& name : made.Matching(kAllPdfs)) {
        if (std::ranges::find(before, name) != before.end()) continue;
        made.Add(name, fingerprint);
        trail.EnterFile(qel::trail_kind::kReportPrinted, name);
        into = stage::kInto + name;
    }
    if (into.empty()) trail.Enter(qel::trail_kind::kReportPrinted, "on printer " + pages.PrinterName());
    return into;
}

std::string Print(int count, const History& history, ArchiveTrail& trail, MadeFiles& made) {
    const auto reports = static_cast<DWORD>(count);
    if (reports > history.Latest())
        throw Failure("there are no " + std::to_string(count) + " reports, but " + std::to_string(history.Latest()));
    ReportPages pages(JobPaths(made, history.Latest() - reports + 1, history.Latest()),
                      history.Record(history.Latest()).GetRenewDateTime());
    const std::string fingerprint = LayoutFingerprint(pages.PrinterName());
    made.Remove(kAllPages);
    Log(stage::kPreviewed + Counted(count, "report"));
    std::string text;
    for (int page = 1; page <= pages.Count(); ++page) {
        const std::string name = PageName(page);
        pages.SavePreview(page, made.Path(name));
        made.Add(name, fingerprint);
        text += "Preview    " + name + "\n";
    }
    const std::string done =
        Counted(count, "report") + " on printer " + pages.PrinterName() + PrintIn(pages, fingerprint, trail, made);
    Log(stage::kPrinted + done);
    return text + "Printed    " + done + "\n";
}

// @return what was done
std::string Do(const Options& options, const CString& folder, MadeFiles& made) {
    const Installation installation(folder);
    ArchiveTrail trail(made, installation);
    Session session(made.Path("users.db"), trail, options.user, options.password);
    trail.SetUser(session.Operator());
    std::string text = DescribedUser(session);
    History history(folder, trail);
    if (options.takeOut > 0) text += TakeOut(static_cast<DWORD>(options.takeOut), history, trail, made);
    if (options.print > 0) text += Print(options.print, history, trail, made);
    if (!options.addUser.empty())
        text += AddUser({options.addUser, options.fullName, options.newPassword, options.role}, session, trail,
                        installation);
    if (!options.sign.empty())
        text += Sign(options.sign, static_cast<DWORD>(options.version), options.password, session, history, trail,
                     installation, made);
    if (options.signedReport > 0)
        text += PrintSigned(static_cast<DWORD>(options.signedReport), session, history, trail, made);
    if (options.isExport) text += Export(history, trail, made);
    if (!options.data.empty()) text += KeepResult(options, session, history, trail, made);
    return text;
}

// A refused logon also writes to the store and to the log.
void KeepStoreAndLog(MadeFiles& made) {
    made.Keep("users.db");
    made.Keep("titration.log");
    made.Keep(kTrail);
}

void Run(const Options& options, const CString& folder) {
    const RunLog log(folder);
    ::setenv("QELLIB10_PDF_DIR", options.out.c_str(), 0);  // where the printer "PDF" writes its files
    MadeFiles made(folder);
    std::string text;
    try {
        const ElapsedLine progress("Working in " + options.out);
        text = Do(options, folder, made);
    } catch (const Failure& failure) {
        Log(std::string("failed: ") + failure.what());
        About(failure.what(), [&] { KeepStoreAndLog(made); });
        throw;
    }
    KeepStoreAndLog(made);
    std::printf("%sLogged     titration.log\n%s", text.c_str(), log.NewLines(kIndent).c_str());
}

// @return the exit status
int Run(const Options& options) {
    const CString folder = OnFile(options.out, [&] { return qel::FullPath(options.out); });
    if ((options.list || options.verify || options.attack) && CQFile::IsExist(folder) == 0)
        throw Failure(options.out + ": is missing, or cannot be looked at");
    if (options.list) {
        std::printf("Made in %s\n%s", options.out.c_str(), MadeFiles(folder).Listed().c_str());
        return 0;
    }
    if (options.verify) return Verify(folder) ? 0 : 1;
    if (options.attack) return ShowAttacks(folder) ? 0 : 1;
    if (CQFile::CreateDirectories(folder) == 0) throw Failure(options.out + ": " + Why("cannot be made"));
    Run(options, folder);
    return 0;
}

}  // namespace
}  // namespace titration

int main(int argc, char** argv) {
    qel::SetCodePage(qel::kCodePageUtf8);  // like terminals and files here
    try {
        const int status = titration::Run(titration::ParseOptions(argc, argv));
        if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return status;
        throw titration::Failure(std::string("standard output: ") + std::strerror(errno));
    } catch (const titration::Failure& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
