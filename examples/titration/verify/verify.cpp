#include "verify.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "../made_files.h"
#include "../report_job.h"
#include "../report_page.h"
#include "checks.h"
#include "history_checks.h"
#include "log_check.h"
#include "page_checks.h"
#include "result_checks.h"

namespace titration {
namespace {

std::optional<Recomputed> VerifyResult(Checks& checks, const MadeFiles& made) {
    std::optional<Recomputed> result;
    checks.Run("method.xml", [&] { return CheckMethod(made); });
    checks.Run("variables.qel", [&] { return CheckVariables(made); });
    checks.Run("result", [&] {
        result = Recompute(made);
        return Shown(result->result) + ", computed again from method.xml and variables.qel";
    });
    const auto required = [&] {
        Require(result.has_value(), "there is no result to compare it with");
        return *result;
    };
    checks.Run("result.csv", [&] { return CheckTable(made, required()); });
    checks.Run("report.txt", [&] { return CheckReport(made, required()); });
    return result;
}

DWORD VerifyHistory(Checks& checks, const MadeFiles& made) {
    const KeptHistory history(made);
    checks.Run("results.hcf", [&] { return history.CheckCabinet(); });
    checks.Run("renewals.qel", [&] { return history.CheckRecords(); });
    for (DWORD version = 1; version <= history.Versions(); ++version) {
        checks.Run("version " + std::to_string(version) + " in results.hcf",
                   [&] { return history.CheckVersion(version); });
    }
    return history.Versions();
}

std::vector<std::string> VerifyLog(Checks& checks, const MadeFiles& made, DWORD versions,
                                   const std::optional<std::string>& result) {
    LogFacts facts;
    checks.Run("titration.log", [&] {
        facts = CheckLog(made.Path("titration.log"), versions, result);
        return facts.text;
    });
    return facts.printed;
}

void VerifyPages(Checks& checks, const MadeFiles& made, DWORD versions, const std::optional<std::string>& headline) {
    checks.Run("curve.png", [&] { return CheckPicture(made, "curve.png"); });
    for (DWORD version = 1; version <= versions; ++version) {
        const auto latest = version == versions ? headline : std::nullopt;
        checks.Run(ReportJobName(version), [&] { return CheckJob(made, version, latest); });
    }
    for (const std::string& name : made.Matching("page-*.png")) {
        checks.Run(name, [&] { return CheckPicture(made, name); });
    }
}

void VerifyPrinted(Checks& checks, const MadeFiles& made, const std::vector<std::string>& printed) {
    const std::vector<std::string> found = made.Matching("*.pdf");
    std::set<std::string> names(printed.begin(), printed.end());
    names.insert(found.begin(), found.end());
    for (const std::string& name : names) {
        checks.Run(name, [&] { return CheckPdf(made, name); });
    }
}

}  // namespace

bool Verify(const CString& folder) {
    Checks checks;
    const MadeFiles made(folder);
    std::optional<std::string> shown, headline;
    if (const auto recomputed = VerifyResult(checks, made)) {
        shown = Shown(recomputed->result);
        headline = Headline(recomputed->result);
    }
    const DWORD versions = VerifyHistory(checks, made);
    const std::vector<std::string> printed = VerifyLog(checks, made, versions, shown);
    VerifyPages(checks, made, versions, headline);
    VerifyPrinted(checks, made, printed);
    const std::string failed = checks.Failed() == 0 ? "all right" : std::to_string(checks.Failed()) + " failed";
    std::printf("%d checks, %s\n", checks.Count(), failed.c_str());
    return checks.Failed() == 0;
}

}  // namespace titration
