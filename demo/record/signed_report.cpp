#include "demo/record/signed_report.h"

#include "demo/record/people.h"
#include "demo/report/layout_fingerprint.h"
#include "demo/report/report.h"
#include "demo/report/report_page.h"
#include "demo/report/signature_job.h"
#include "demo/report/temporary_print.h"
#include "demo/result/run_log.h"
#include "demo/support/file_names.h"
#include "demo/support/file_step.h"
#include "demo/support/number.h"
#include "demo/support/text_file.h"

namespace titration {
namespace {

constexpr const char* kExported = "versions.csv";

void WriteVersions(CQCSVFile& file, const std::vector<qel::RecordedVersion>& versions) {
    const auto line = [&](const std::vector<std::string>& fields) {
        for (std::size_t i = 0; i < fields.size(); ++i) {
            if (i > 0) file.WriteDelimiter();
            file.WriteCSVString(fields[i].c_str());
        }
        file.WriteCRLF();
    };
    line({"version", "user", "UTC", "reason", "bytes", "SHA-256", "entry", "as recorded"});
    for (const qel::RecordedVersion& version : versions)
        line({std::to_string(version.version), qel::SpreadsheetText(version.user), qel::TrailTimeText(version.time),
              qel::SpreadsheetText(version.reason), std::to_string(version.size), version.sha256,
              std::to_string(version.entry), version.IsFinding() ? "no" : "yes"});
}

// The signatures are about the report that is printed with them.
void RequireSigned(const qel::SignatureBlock& block, const std::string& job) {
    const std::optional<qel::FileHash> hash = qel::HashFile(job);
    if (!hash) throw Failure(job + ": " + Why("cannot be read"));
    for (const qel::ShownSignature& signature : block.signatures) {
        if (signature.reportSha256 != hash->sha256)
            throw Failure(job + ": is not what " + signature.user + " has signed");
    }
}

}  // namespace

std::string PrintSigned(DWORD version, Session& session, History& history, ArchiveTrail& trail, MadeFiles& made) {
    const std::string which = "version " + std::to_string(version);
    const auto block =
        qel::ReadSignatureBlock(trail.Trail(), history.Guid(), history.Recorded(version), RulesOf(session.Store()));
    if (!block) throw Failure(which + ": " + Why("its signatures cannot be read"));
    if (!block->whyNotFinal.empty()) throw Failure(which + " is not final: " + block->whyNotFinal);
    RequireSigned(*block, made.Path(JobName(version)));
    ReportPrinter printer(kPdfPrinter);
    const std::string fingerprint = LayoutFingerprint(kPdfPrinter);
    CQelPrintJobQueueData job =
        MakeSignatureJob("Signed: " + which, block->Lines(), PagesOf(SignedJobPaths(made, version)), printer);
    const std::string jobName = SignatureJobName(version), name = SignedName(version);
    if (job.SaveJobFile(made.Path(jobName).c_str()) == 0) throw Failure(jobName + ": " + Why("cannot be written"));
    made.Add(jobName, fingerprint);
    trail.EnterFile(qel::trail_kind::kReportPrinted, jobName);
    ReportPages pages(SignedJobPaths(made, version), history.Record(version).GetRenewDateTime());
    WriteTextFile(ReadBytes(TemporaryPrint(pages).Path()), made.Path(name));
    made.Add(name, fingerprint);
    trail.EnterFile(qel::trail_kind::kReportPrinted, name);
    Log(stage::kSignedReport + std::to_string(version));
    std::string text = "Signed     " + name + "\n";
    for (const std::string& line : block->Lines()) text += kIndent + line + "\n";
    return text;
}

std::string Export(History& history, ArchiveTrail& trail, MadeFiles& made) {
    const std::vector<qel::RecordedVersion> versions = history.Recorded();
    OnFile(kExported, [&] {
        CQCSVFile file;
        Open(file, made.Path(kExported), CFile::modeCreate | CFile::modeWrite | CFile::shareExclusive);
        WriteVersions(file, versions);
        file.Close();
    });
    made.Add(kExported);
    trail.EnterFile(qel::trail_kind::kExport, kExported);
    Log(std::string("exported ") + kExported);
    return "Exported   " + std::string(kExported) + ", " + Counted(static_cast<long long>(versions.size()), "version") +
           "\n";
}

}  // namespace titration
