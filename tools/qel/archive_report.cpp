// What the comparison of an archive with its trails has found, as text and as JSON.
#include <algorithm>

#include "trail_archive.h"

namespace tool {
namespace {

using Finding = ArchiveReport::Finding;

std::string FindingLine(const Finding& finding) {
    const qel::RecordedVersion& version = finding.version;
    std::string line = finding.file.empty() ? "cabinet " + finding.cabinet : Shown(finding.file);
    if (version.version > 0) line += ": version " + std::to_string(version.version);
    if (finding.byte > 0) line += ", byte " + std::to_string(finding.byte);
    line += ": " + Shown(finding.detail);
    if (version.entry > 0) line += ", entry " + std::to_string(version.entry);
    if (!version.user.empty()) line += " by " + Shown(version.user);
    return line + '\n';
}

Json FindingJson(const Finding& finding) {
    const qel::RecordedVersion& version = finding.version;
    return {{"finding", NameOf(finding.status)},
            {"status", static_cast<int>(finding.status)},
            {"file", finding.file},
            {"byte", finding.byte > 0 ? Json(finding.byte) : Json(nullptr)},
            {"cabinet", finding.cabinet},
            {"cabinetVersion", version.version},
            {"entry", version.entry},
            {"user", version.user},
            {"signer", finding.signer},
            {"size", version.size},
            {"sha256", version.sha256},
            {"foundSize", finding.found ? Json(finding.found->size) : Json(nullptr)},
            {"foundSha256", finding.found ? finding.found->sha256 : ""},
            {"guid", finding.guid},
            {"sealVersion", finding.sealVersion},
            {"olderEntry", finding.olderEntry},
            {"detail", finding.detail}};
}

}  // namespace

void ArchiveReport::Join(const ArchiveReport& part) {
    cabinets += part.cabinets;
    versions += part.versions;
    files += part.files;
    findingCount += part.findingCount;
    findings.insert(findings.end(), part.findings.begin(), part.findings.end());
}

std::string ArchiveText(const ArchiveReport& report) {
    std::string text;
    for (const Finding& finding : report.findings) text += FindingLine(finding);
    return text + Count(report.cabinets, "cabinet", "cabinets") + ", " + Count(report.versions, "version", "versions") +
           ", " + Count(report.files, "recorded file", "recorded files") + ": " +
           Count(report.findingCount, "finding", "findings") + '\n';
}

void AddArchiveJson(const ArchiveReport& report, Json& json) {
    json["cabinets"] = report.cabinets;
    json["versions"] = report.versions;
    json["recordedFiles"] = report.files;
    json["archiveFindingCount"] = report.findingCount;
    json["archiveFindings"] = Json::array();
    for (const Finding& finding : report.findings) json["archiveFindings"].push_back(FindingJson(finding));
}

Status WorstOf(const ArchiveReport& report) {
    Status status = kGood;
    for (const Finding& finding : report.findings) status = std::max(status, finding.status);
    return status;
}

}  // namespace tool
