#include "demo/verify/verify.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "demo/report/report.h"
#include "demo/report/report_page.h"
#include "demo/report/report_printer.h"
#include "demo/report/temporary_print.h"
#include "demo/result/archive_trail.h"
#include "demo/result/made_files.h"
#include "demo/result/renewals.h"
#include "demo/support/file_names.h"
#include "demo/support/number.h"
#include "demo/support/text_file.h"
#include "demo/verify/checks.h"
#include "demo/verify/history_checks.h"
#include "demo/verify/log_check.h"
#include "demo/verify/made_again.h"
#include "demo/verify/record_checks.h"
#include "demo/verify/result_checks.h"
#include "demo/verify/user_checks.h"

namespace titration {
namespace {

// The checks run in an order in which each can use what the earlier ones found.
class Verification {
public:
    explicit Verification(const CString& folder)
        : m_folder(folder), m_made(folder), m_history(m_made), m_again(m_made) {}

    bool Run() {
        CheckLists();
        for (DWORD version = 1; version <= m_history.Versions(); ++version) CheckVersion(version);
        CheckLatest(m_history.Versions());
        CheckPages();
        CheckPrinted();
        CheckRecord();
        CheckOthers();
        const std::string failed = m_checks.Failed() == 0 ? "all right" : std::to_string(m_checks.Failed()) + " failed";
        std::printf("%d checks, %s%s\n", m_checks.Count(), failed.c_str(), SumsAloneText().c_str());
        return m_checks.Failed() == 0;
    }

private:
    std::string SumsAloneText() const {
        const int count = m_again.CountBySumsAlone();
        if (count == 0) return "";
        return "; " + Counted(count, "file") + (count == 1 ? " was" : " were") + " compared by checksums alone";
    }

    void CheckLists() {
        m_checks.Run("made.ini", [&] {
            m_names = m_made.WrittenDown();
            return "sums of " + Counted(static_cast<long long>(m_names.size()), "file");
        });
        const std::vector<std::string> found = m_made.Found();
        m_names.insert(m_names.end(), found.begin(), found.end());
        m_checks.Run("titration.log", [&] { return CheckLog(m_made, m_history.Versions(), m_log); });
        m_names.insert(m_names.end(), m_log.takenOut.begin(), m_log.takenOut.end());
        m_checks.Run("users.db", [&] { return CheckUsers(m_made, m_history.Records()); });
        m_checks.Run("results.hcf", [&] { return m_history.CheckCabinet(); });
        m_checks.Run("renewals.qel", [&] { return m_history.CheckRecords(); });
    }

    // Files that not every version has: one that was not taken out, or that an earlier release has made.
    bool IsListed(const std::string& name) const { return std::ranges::find(m_names, name) != m_names.end(); }

    void CheckVersion(DWORD version) {
        m_titration.reset();
        m_checks.Run(MethodName(version), [&] { return CheckMethod(m_made, MethodName(version)); });
        m_checks.Run(CurveName(version), [&] {
            m_made.RequireAsMade(CurveName(version));
            return "as it was measured";
        });
        m_checks.Run("version " + std::to_string(version) + " in results.hcf", [&] {
            m_titration = EvaluateAgain(m_made, version, m_history, m_log);
            if (!IsListed(TraceName(version))) m_titration->result.trace = {};
            return Shown(m_titration->result) + ", computed again from " + MethodName(version) + " and " +
                   CurveName(version) + "; " + Described(m_history.Record(version));
        });
        if (IsListed(TraceName(version)))
            m_checks.Run(TraceName(version),
                         [&] { return CheckTraceFile(m_made, version, RequireTitration().result); });
        m_checks.Run(JobName(version), [&] {
            const std::string shown = CheckHeadline(m_made, version, RequireTitration().result);
            return shown + ", " +
                   m_again.Check(JobName(version), JobName(version), PrinterOf(m_made, version),
                                 [&](const std::string& path) { MakeAgain(version, path, TemporaryFile().Path()); });
        });
        for (int number = 1; IsListed(TraceJobName(version, number)); ++number) CheckTraceJob(version, number);
        const std::string takenOut = TakenOutName(version);
        if (!IsListed(takenOut)) return;
        m_checks.Run(takenOut, [&] {
            m_made.RequireAsMade(takenOut);
            m_history.RequireVersionIn(takenOut, version);
            return "version " + std::to_string(version) + " in results.hcf";
        });
    }

    void CheckTraceJob(DWORD version, int number) {
        const std::string name = TraceJobName(version, number);
        m_checks.Run(name, [&] {
            const std::string printer = PrinterOf(m_made, version);
            return m_again.Check(name, JobName(version), printer, [&](const std::string& path) {
                MakeTraceJobAgain(RequireTitration().result, version, number, printer, path);
            });
        });
    }

    // Files that exist for the latest version only.
    void CheckLatest(DWORD version) {
        m_checks.Run("method.xml", [&] {
            const std::string found = CheckMethod(m_made, "method.xml");
            Require(
                CQFile::CompareFile(m_made.Path("method.xml").c_str(), m_made.Path(MethodName(version)).c_str()) != 0,
                "differs from " + MethodName(version));
            return found;
        });
        m_checks.Run("variables.qel", [&] {
            const std::string found = CheckVariables(m_made);
            m_history.RequireVersionIn("variables.qel", version);
            return found;
        });
        m_checks.Run("result.csv", [&] { return CheckTable(m_made, RequireTitration().result); });
        m_checks.Run("report.txt", [&] {
            return m_again.CheckText("report.txt",
                                     [&](const std::string& path) { WriteTextFile(Report(RequireTitration()), path); });
        });
        m_checks.Run("curve.png", [&] {
            return m_again.Check("curve.png", JobName(version), PrinterOf(m_made, version),
                                 [&](const std::string& path) { MakeAgain(version, TemporaryFile().Path(), path); });
        });
    }

    void CheckPages() {
        const LoggedReports& reports = m_log.previewed;
        if (reports.last == 0) return;
        const int pages = PagesOf(JobsOf(reports));
        for (int page = 1; page <= pages; ++page) {
            CheckDrawn(PageName(page), PageName(1), reports, JobsOf(reports),
                       [&](ReportPages& again, const std::string& path) { again.SavePreview(page, path); });
        }
    }

    void CheckPrinted() {
        for (const auto& [name, reports] : m_log.printed) {
            CheckDrawn(name, name == m_log.printedLast ? PageName(1) : name, reports, JobsOf(reports), PrintInto);
        }
    }

    // Folders of earlier releases have no trail.
    void CheckRecord() {
        for (const DWORD version : m_log.signedReports) {
            CheckDrawn(SignedName(version), SignatureJobName(version), {version, version},
                       SignedJobPaths(m_made, version), PrintInto);
        }
        const Installation installation(m_folder);
        if (!installation.HasHead() && CQFile::IsExist(m_made.Path(kTrail).c_str()) == 0) return;
        RecordChecks checks(m_folder, {.headFile = installation.HasHead() ? installation.HeadPath() : ""});
        const auto check = [&](const char* what, const char* found, std::vector<std::string> findings) {
            m_checks.Run(what, [&] {
                Require(findings.empty(), findings.empty() ? "" : findings.front());
                return *found != 0 ? found : checks.Summary();
            });
        };
        check(kTrail, "", checks.OfTrail());
        check("versions in the trail", "each is what was registered", checks.OfVersions());
        check("signatures", "each by its person, as the rules say", checks.OfSignatures());
        check("files in the trail", "each is what was sealed, printed or exported", checks.OfFiles());
        check(kAllowedSigners, "says the same as the trail", checks.OfSigners());
    }

    // Files that no other check has seen, and files that are missing.
    void CheckOthers() {
        std::vector<std::string> printed = m_made.Matching(kAllPdfs);
        for (const std::string& page : m_made.Matching(kAllPages)) printed.push_back(page);
        for (const std::string& name : m_names) {
            if (m_checks.HasRun(name)) continue;
            m_checks.Run(name, [&] {
                Require(std::ranges::find(printed, name) == printed.end(), "titration.log does not mention it");
                m_made.RequireAsMade(name);
                return "as it was made";
            });
        }
    }

    static void PrintInto(ReportPages& pages, const std::string& path) {
        WriteTextFile(ReadBytes(TemporaryPrint(pages).Path()), path);
    }
    std::vector<std::string> JobsOf(const LoggedReports& reports) const {
        return JobPaths(m_made, reports.first, reports.last);
    }

    template <class Draw> void CheckDrawn(const std::string& name, const std::string& beside,
                                          const LoggedReports& reports, const std::vector<std::string>& jobs,
                                          Draw draw) {
        m_checks.Run(name, [&] {
            return m_again.Check(name, beside, PrinterOf(m_made, reports.first),
                                 [&](const std::string& path) {
                                     ReportPages again(jobs, m_history.Record(reports.last).GetRenewDateTime());
                                     draw(again, path);
                                 }) +
                   ", from " + reports.Described();
        });
    }

    const Titration& RequireTitration() const {
        Require(m_titration.has_value(), "there is no result to compare it with");
        return *m_titration;
    }
    void MakeAgain(DWORD version, const std::string& job, const std::string& picture) const {
        MakeJobAgain(RequireTitration(), version, m_history.Record(version), PrinterOf(m_made, version), job, picture);
    }

    Checks m_checks;
    const CString m_folder;
    const MadeFiles m_made;
    const KeptHistory m_history;
    MadeAgain m_again;
    std::vector<std::string> m_names;  // of all files that are there, or should be
    LogFacts m_log;
    std::optional<Titration> m_titration;  // that of the version that was checked last
};

}  // namespace

bool Verify(const CString& folder) { return Verification(folder).Run(); }

}  // namespace titration
