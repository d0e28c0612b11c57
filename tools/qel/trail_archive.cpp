#include "trail_archive.h"

#include <filesystem>

#include "content_check.h"
#include "file_check.h"
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

Meaning MeaningOf(qel::RecordedFile::State state) {
    switch (state) {
        case qel::RecordedFile::State::kChanged:
            return {kChanged, "is not what was recorded"};
        case qel::RecordedFile::State::kMissing:
            return {kMissing, "was recorded, and is not there"};
        case qel::RecordedFile::State::kUnreadable:
            return {kUnreadable, "cannot be read"};
        default:
            return {kGood, ""};
    }
}

void CompareFiles(ArchiveReport& report, const qel::FileRecords& records, const std::string& folder) {
    for (const qel::RecordedFile& file : records.Compare(Path(folder).View())) {
        ++report.files;
        const Meaning meaning = MeaningOf(file.state);
        if (meaning.status == kGood) continue;
        qel::RecordedVersion about;
        about.user = file.user;
        about.entry = file.entry;
        about.size = file.size;
        about.sha256 = file.sha256;
        report.findings.push_back({folder + '/' + file.path, meaning.status, {}, about, meaning.detail});
    }
}

// @param name within the archive
void RequireRecordedIfSealed(ArchiveReport& report, const qel::FileRecords& records, const std::string& file,
                             const std::string& name) {
    if (records.Names(name)) return;
    const FileReport found = CheckFile(file);
    if (found.isSealed) report.findings.push_back({file, kNeverRecorded, {}, {}, "is sealed, and no entry names it"});
    // Others may write to a file without a seal: it is not finished. One with a seal is, and has to be readable.
    if (found.finding == kUnreadable && HasTraceOfSeal(file))
        report.findings.push_back({file, kUnreadable, {}, {}, found.detail});
}

}  // namespace

ArchiveReport CompareArchive(const std::string& trail, const std::string& folder, const qel::TrailReceipt& last) {
    qel::CabinetRecords cabinets;
    qel::FileRecords files;
    if (cabinets.Read(Path(trail).View(), last) == 0 || files.Read(Path(trail).View(), last) == 0)
        throw Named(trail, LastRefusal("cannot be read", kInconsistent));
    ArchiveReport report;
    const Tree tree = FilesBelow(folder);
    for (const std::string& unreadable : tree.unreadableFolders)
        report.findings.push_back({unreadable, kUnreadable, {}, {}, "the folder cannot be read"});
    for (const std::string& file : tree.files) {
        try {
            Guarded([&] {
                if (IsCabinet(file)) return CompareCabinet(report, cabinets, file);
                RequireRecordedIfSealed(report, files, file, NameBelow(folder, file));
            });
        } catch (const Failure& failure) {
            report.findings.push_back({file, failure.ExitStatus(), {}, {}, failure.what()});
        }
    }
    for (const qel::CabinetRecords::Cabinet& missing : cabinets.Rest()) AddFindings(report, "", missing);
    CompareFiles(report, files, folder);
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
