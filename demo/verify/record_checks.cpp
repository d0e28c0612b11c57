#include "demo/verify/record_checks.h"

#include "demo/record/people.h"
#include "demo/result/archive_trail.h"
#include "demo/support/file_names.h"
#include "demo/support/file_step.h"
#include "demo/support/number.h"

namespace titration {
namespace {

using Findings = std::vector<std::string>;

constexpr std::int64_t kLargestStep = 2000;  // ms, by which a time server may correct a clock

void AddFindings(Findings& findings, const std::vector<qel::RecordedVersion>& versions) {
    for (const qel::RecordedVersion& version : versions) {
        if (version.IsFinding())
            findings.push_back("version " + std::to_string(version.version) + ": " +
                               std::string(qel::StateText(version.state)));
    }
}

// The renewal records have no signature: they only repeat what the entries say.
void AddRenewals(Findings& findings, const std::vector<qel::RecordedVersion>& versions, const std::string& path) {
    OnFile("renewals.qel", [&] {
        CQFile file;
        OpenForReading(file, path);
        const std::vector<CHistoryRenewInfo> records = qel::ReadRenewalRecords(file).whole;
        for (const qel::RecordedVersion& version : versions) {
            if (version.state != qel::RecordedState::kRecorded || version.version > records.size()) continue;
            const std::string name(records[version.version - 1].GetOperator());
            if (name != version.user)
                findings.push_back("renewals.qel: version " + std::to_string(version.version) + " names " + name +
                                   ", and its entry " + version.user);
        }
    });
}

template <class Take> void ForEachEntry(const std::string& trail, Take take) {
    qel::TrailReader reader;
    if (reader.Open(trail) == 0) return;  // OfTrail has said so
    for (;;) {
        const std::optional<qel::TrailEntry> entry = reader.Next();
        if (entry) {
            take(*entry);
        } else if (qel::LastFailure().kind != qel::FailureKind::kData) {
            return;
        }
    }
}

}  // namespace

RecordChecks::RecordChecks(const CString& archive, qel::TrailAnchors anchors)
    : m_archive(archive), m_anchors(std::move(anchors)) {}

std::string RecordChecks::Path(const std::string& name) const {
    return std::string(CQFile::BuildFilePath(m_archive, name.c_str()));
}

Findings RecordChecks::OfTrail() {
    m_report = {};
    if (qel::CheckTrail(Path(kTrail), m_anchors, m_report) == 0) return {Why("the trail cannot be read")};
    Findings findings;
    for (const qel::TrailFinding& finding : m_report.findings)
        findings.push_back("entry " + std::to_string(finding.entry) + ": " + finding.text);
    if (m_report.clockSet == 0) return findings;
    ForEachEntry(Path(kTrail), [&](const qel::TrailEntry& entry) {
        const bool isJump = entry.action == qel::trail_kind::kClockJumped && entry.after < entry.before;
        const bool isBack = entry.clock && entry.time - *entry.clock > kLargestStep;
        if (isJump || isBack)
            findings.push_back("entry " + std::to_string(entry.number) + ": the clock was set back to " +
                               (isJump ? entry.after : qel::TrailTimeText(*entry.clock)));
    });
    return findings;
}

std::string RecordChecks::Summary() const {
    return std::to_string(m_report.entries) + (m_report.entries == 1 ? " entry" : " entries") +
           (m_report.isAnchored ? ", consistent" : ", consistent, not anchored: " + m_report.unanchored);
}

Findings RecordChecks::OfVersions() const {
    qel::CabinetRecords records;
    if (records.Read(Path(kTrail), Checked()) == 0) return {Why("the trail cannot be read")};
    Findings findings;
    qel::CabinetRecords::Cabinet cabinet;
    if (records.Compare(Path("results.hcf"), cabinet) == 0) findings.push_back("results.hcf: " + Why("cannot be read"));
    AddFindings(findings, cabinet.versions);
    AddRenewals(findings, cabinet.versions, Path("renewals.qel"));
    for (const qel::CabinetRecords::Cabinet& missing : records.Rest()) {
        findings.push_back("the cabinet " + missing.guid + " is missing");
        AddFindings(findings, missing.versions);
    }
    return findings;
}

Findings RecordChecks::OfSignatures() const {
    qel::UserStoreSettings readOnly;
    readOnly.isReadOnly = true;
    qel::UserStore store(Path("users.db").c_str(), readOnly);
    store.Connect();
    if (store.IsConnected() == 0) return {"users.db: " + Why("cannot be read")};
    qel::SignatureReport report;
    if (qel::CheckSignatures(Path(kTrail), RulesOf(store), report, Checked()) == 0)
        return {Why("the trail cannot be read")};
    Findings findings;
    for (const qel::SignatureFinding& finding : report.findings)
        findings.push_back("entry " + std::to_string(finding.entry) + ", a signature of " + finding.user + ": " +
                           finding.text);
    ForEachEntry(Path(kTrail), [&](const qel::TrailEntry& entry) {
        const auto signedText = qel::ReadPersonStatement(entry.statement);
        if (entry.action != qel::trail_kind::kSignature || !signedText) return;
        const std::string name = JobName(static_cast<DWORD>(entry.cabinetVersion));
        const std::optional<qel::FileHash> now = qel::HashFile(Path(name));
        if (!now || now->sha256 != signedText->reportSha256)
            findings.push_back(name + " is not what " + entry.user + " has signed");
    });
    return findings;
}

Findings RecordChecks::OfFiles() const {
    using State = qel::RecordedFile::State;
    qel::FileRecords records;
    if (records.Read(Path(kTrail), Checked()) == 0) return {Why("the trail cannot be read")};
    Findings findings;
    for (const qel::RecordedFile& file : records.Compare(m_archive.View())) {
        if (file.state != State::kRecorded)
            findings.push_back(file.path + (file.state == State::kMissing      ? " is missing"
                                            : file.state == State::kUnreadable ? " cannot be read"
                                                                               : " is not what was recorded"));
    }
    return findings;
}

Findings RecordChecks::OfSigners() const {
    const std::string path = Path(kAllowedSigners);
    if (CQFile::IsExist(path.c_str()) == 0) return {};
    qel::TrailSigners signers;
    if (signers.Read(Path(kTrail), Checked()) == 0) return {Why("the trail cannot be read")};
    std::vector<qel::SignersDifference> differences;
    if (signers.Compare(path, differences) == 0) return {std::string(kAllowedSigners) + ": " + Why("cannot be read")};
    Findings findings;
    for (const qel::SignersDifference& difference : differences)
        findings.push_back(std::string(kAllowedSigners) + ": " + difference.text);
    return findings;
}

Findings RecordChecks::All() {
    Findings all = OfTrail();
    for (const Findings& more : {OfVersions(), OfSignatures(), OfFiles(), OfSigners()})
        all.insert(all.end(), more.begin(), more.end());
    return all;
}

}  // namespace titration
