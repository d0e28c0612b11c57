#include "trail_archive.h"

#include "content_check.h"
#include "tree.h"

namespace tool {
namespace {

bool IsCabinet(const std::string& path) {
    CQFile file;
    Open(file, path, CFile::modeRead | CFile::shareDenyNone);
    return KindOf(file) == "cabinet";
}

struct Meaning {
    Status status;
    const char* detail;
};

Meaning MeaningOf(qel::RecordedState state) {
    switch (state) {
        case qel::RecordedState::kChanged:
            return {kChanged, "is not what was registered"};
        case qel::RecordedState::kUnrecorded:
            return {kNeverRecorded, "no entry announced it"};
        case qel::RecordedState::kInterrupted:
            return {kInconsistent, "its registering was interrupted"};
        case qel::RecordedState::kMissing:
            return {kMissing, "was registered, and is not there"};
        default:
            return {kGood, ""};
    }
}

void AddFindings(ArchiveReport& report, const std::string& file, const qel::CabinetRecords::Cabinet& cabinet) {
    for (const qel::RecordedVersion& version : cabinet.versions) {
        const Meaning meaning = MeaningOf(version.state);
        if (version.IsFinding())
            report.findings.push_back({file, meaning.status, cabinet.guid, version, meaning.detail});
        if (version.state != qel::RecordedState::kMissing) ++report.versions;
    }
}

void CompareCabinet(ArchiveReport& report, qel::CabinetRecords& records, const std::string& file) {
    qel::CabinetRecords::Cabinet cabinet;
    ++report.cabinets;
    if (records.Compare(Path(file).View(), cabinet) == 0) throw LastRefusal("cannot be read", kBadHeader);
    AddFindings(report, file, cabinet);
}

}  // namespace

ArchiveReport CompareArchive(const std::string& trail, const std::string& folder) {
    qel::CabinetRecords records;
    if (records.Read(Path(trail).View()) == 0) throw Named(trail, LastRefusal("cannot be read", kMalformed));
    ArchiveReport report;
    const Tree tree = FilesBelow(folder);
    for (const std::string& unreadable : tree.unreadableFolders)
        report.findings.push_back({unreadable, kUnreadable, {}, {}, "the folder cannot be read"});
    for (const std::string& file : tree.files) {
        try {
            if (Guarded([&] { return IsCabinet(file); })) CompareCabinet(report, records, file);
        } catch (const Failure& failure) {
            report.findings.push_back({file, failure.ExitStatus(), {}, {}, failure.what()});
        }
    }
    for (const qel::CabinetRecords::Cabinet& missing : records.Rest()) AddFindings(report, "", missing);
    return report;
}

std::string FindingLine(const ArchiveReport::Finding& finding) {
    const qel::RecordedVersion& version = finding.version;
    std::string line = finding.file.empty() ? "cabinet " + finding.cabinet : Shown(finding.file);
    if (version.version > 0) line += ": version " + std::to_string(version.version);
    line += ": " + Shown(finding.detail);
    if (version.entry > 0) line += ", entry " + std::to_string(version.entry) + " by " + Shown(version.user);
    return line + '\n';
}

Json FindingJson(const ArchiveReport::Finding& finding) {
    const qel::RecordedVersion& version = finding.version;
    return {{"file", finding.file},       {"status", static_cast<int>(finding.status)},
            {"cabinet", finding.cabinet}, {"cabinetVersion", version.version},
            {"entry", version.entry},     {"user", version.user},
            {"size", version.size},       {"sha256", version.sha256},
            {"detail", finding.detail}};
}

}  // namespace tool
