#include "trail_archive.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <memory>

#include "archive_signers.h"
#include "tree.h"
#include "workers.h"

namespace tool {
namespace {

using Finding = ArchiveReport::Finding;

bool IsCabinet(const std::string& path) {
    CQFile file;
    Open(file, path, CFile::modeRead | CFile::shareDenyNone);
    std::array<char, qel::kCabinetKindBytes> start = {};
    const UINT size = file.Read(start.data(), static_cast<UINT>(start.size()));
    return qel::KindOfCabinetFile({start.data(), size}) == qel::CabinetFileKind::kCabinet;
}

Status StatusOf(qel::RecordedState state) {
    switch (state) {
        case qel::RecordedState::kChanged:
            return kVersionChanged;
        case qel::RecordedState::kUnrecorded:
            return kNeverRecorded;
        case qel::RecordedState::kInterrupted:
            return kVersionInterrupted;
        case qel::RecordedState::kMissing:
            return kVersionMissing;
        default:
            return kGood;
    }
}

struct Meaning {
    Status status;
    const char* detail;
};

Meaning MeaningOf(qel::RecordedFile::State state) {
    switch (state) {
        case qel::RecordedFile::State::kChanged:
            return {kFileChanged, "is not what was recorded"};
        case qel::RecordedFile::State::kMissing:
            return {kFileMissing, "was recorded, and is not there"};
        case qel::RecordedFile::State::kUnreadable:
            return {kUnreadable, "cannot be read"};
        default:
            return {kGood, ""};
    }
}

void SetFound(Finding& finding) {
    finding.found = qel::HashFile(Path(finding.file).View());
    const FileReport now = CheckFile(finding.file);
    finding.guid = now.guid;
    finding.sealVersion = now.sealVersion;
}

void Add(ArchiveReport& report, Finding finding) {
    const Status status = finding.status;
    if (status == kFileChanged || status == kSealNeverRecorded || status == kPrintNeverRecorded) SetFound(finding);
    report.Add(std::move(finding));
}

// Where the versions of findings are.
void AddPlaces(const std::string& path, std::vector<Finding>& findings) {
    std::map<std::uint64_t, Finding*> wanted;
    for (Finding& finding : findings) wanted[finding.version.version] = &finding;
    try {
        CQFile file;
        Open(file, path, CFile::modeRead | CFile::shareDenyNone);
        qel::CabinetReader reader(file);
        while (const std::optional<qel::CabinetVersion> version = reader.Next()) {
            const auto found = wanted.find(version->number);
            if (found != wanted.end()) found->second->byte = version->dataAt;
            if (version->number >= wanted.rbegin()->first) return;
        }
    } catch (const qel::DataError&) {  // the rest cannot be found
    } catch (const CFileException&) {  // the same
    }
}

// The versions of one cabinet.
class Versions {
public:
    explicit Versions(std::string file) : m_file(std::move(file)) {}

    void Take(const std::string& cabinet, const qel::RecordedVersion& version) {
        if (version.state != qel::RecordedState::kMissing) ++m_report.versions;
        if (!version.IsFinding()) return;
        const Status status = StatusOf(version.state);
        m_worst = std::max(m_worst, status);
        ++m_report.findingCount;
        if (m_report.findings.size() < ArchiveReport::kMostOfACabinet)
            m_report.findings.push_back({m_file, status, cabinet, version, std::string(qel::StateText(version.state))});
    }

    ArchiveReport End(const std::string& cabinet) {
        if (!m_file.empty() && !m_report.findings.empty()) AddPlaces(m_file, m_report.findings);
        const std::uint64_t more = m_report.findingCount - m_report.findings.size();
        if (more > 0)
            m_report.findings.push_back(
                {m_file, m_worst, cabinet, {}, "and " + Count(more, "more finding", "more findings")});
        return std::move(m_report);
    }

private:
    std::string m_file;
    ArchiveReport m_report;
    Status m_worst = kGood;
};

// One file, or one path that an entry names. Each is looked at by itself, so that several are at once.
struct Step {
    std::string file;
    std::unique_ptr<qel::CabinetRecords> cabinet = {};  // what the trails say about it
    std::optional<qel::RecordedFile> recorded = {};
    ArchiveReport found = {};
};

class Comparison {
public:
    Comparison(const std::vector<ReadTrail>& trails, const ArchiveOptions& options) : m_options(options) {
        for (const ReadTrail& trail : trails) {
            const std::string path(Path(trail.file).View());
            if (m_cabinets.ReadOn(path, trail.last) == 0 || m_files.ReadOn(path, trail.last) == 0)
                throw Named(trail.file, LastRefusal("cannot be read", kInconsistent));
        }
    }

    ArchiveReport Run() {
        AddTree(FilesBelow(m_options.folder, m_options.except));
        std::vector<Step> named;
        for (const qel::RecordedFile& file : m_files.All()) named.push_back({file.path, {}, file});
        ForEachAtOnce(m_steps.size(), m_options.jobs, [&](std::size_t i) { Take(m_steps[i]); });
        ForEachAtOnce(named.size(), m_options.jobs, [&](std::size_t i) { Take(named[i]); });
        for (Step& step : m_steps) Join(step.found);
        for (const qel::CabinetRecords::Cabinet& missing : m_cabinets.Rest()) {
            Versions versions("");
            for (const qel::RecordedVersion& version : missing.versions) versions.Take(missing.guid, version);
            Join(versions.End(missing.guid));
        }
        for (Step& step : named) Join(step.found);
        m_report.files = named.size();
        return std::move(m_report);
    }

private:
    // Of several copies of a cabinet the first one by name is the one that the trails know.
    void AddTree(const Tree& tree) {
        for (const std::string& folder : tree.unreadableFolders)
            Add(m_report, {folder, kUnreadable, {}, {}, "the folder cannot be read"});
        for (const Tree::Other& other : tree.others) {
            if (!m_files.Names(NameBelow(m_options.folder, other.path)))
                Add(m_report, {other.path, kNotAFile, {}, {}, "is a " + other.kind + ", which no entry can record"});
        }
        for (const std::string& file : tree.files) {
            Step step{file};
            Guard(step, [&] {
                if (IsCabinet(file)) {
                    ++m_report.cabinets;
                    auto known = std::make_unique<qel::CabinetRecords>();
                    if (m_cabinets.TakeOut(Path(file).View(), *known) == 0)
                        throw LastRefusal("cannot be read", kBadHeader);
                    step.cabinet = std::move(known);
                }
            });
            m_steps.push_back(std::move(step));
        }
    }

    template <class Body> void Guard(Step& step, Body&& body) {
        try {
            Guarded(body);
        } catch (const Failure& failure) {
            Add(step.found, {step.file, failure.ExitStatus(), {}, {}, failure.what()});
        }
    }

    void Take(Step& step) {
        if (step.found.findingCount > 0) return;
        Guard(step, [&] {
            if (step.cabinet) {
                CompareCabinet(step);
                RequireSealRecorded(step);
            } else if (step.recorded) {
                CompareFile(step);
            } else {
                RequireRecorded(step);
            }
        });
    }

    FileReport Known(const std::string& file, const std::string& purpose, const Resume::Checking& check) {
        return m_options.resume != nullptr ? m_options.resume->Check(file, purpose, check) : check(file);
    }

    void CompareCabinet(Step& step) {
        const auto compare = [&](const std::string& file) -> FileReport {
            Versions versions(file);
            std::string guid;
            const auto take = [&](const qel::RecordedVersion& version) { versions.Take(guid, version); };
            if (step.cabinet->Compare(Path(file).View(), guid, take) == 0)
                throw LastRefusal("cannot be read", kBadHeader);
            step.found = versions.End(guid);
            return {"cabinet", false, WorstOf(step.found), std::to_string(step.found.versions)};
        };
        const FileReport report = Known(step.file, "cabinet-" + step.cabinet->Sum(), compare);
        step.found.versions = qel::ReadWholeNumber<std::size_t>(report.detail).value_or(0);
    }

    void CompareFile(Step& step) {
        const qel::RecordedFile& file = *step.recorded;
        const std::string folder(Path(m_options.folder).View());
        const std::string path = (std::filesystem::path(m_options.folder) / file.path).string();
        Meaning meaning = {kGood, ""};
        Known(path, "file-" + std::to_string(file.size) + '-' + file.sha256, [&](const std::string&) -> FileReport {
            meaning = MeaningOf(qel::FileRecords::StateIn(folder, file));
            return {"recorded", false, meaning.status, meaning.detail};
        });
        if (meaning.status == kGood) return;
        qel::RecordedVersion about;
        about.user = file.user;
        about.entry = file.entry;
        about.size = file.size;
        about.sha256 = file.sha256;
        Finding finding{path, meaning.status, {}, about, meaning.detail};
        finding.recordedAs = file.path;
        Add(step.found, finding);
    }

    // Its versions are what the trails say of a cabinet; its seal is that of a file.
    void RequireSealRecorded(Step& step) {
        if (HasTraceOfSeal(step.file) && !m_files.Names(NameBelow(m_options.folder, step.file)))
            Add(step.found, {step.file, kSealNeverRecorded, {}, {}, "is sealed, and no entry names it"});
    }

    void RequireRecorded(Step& step) {
        if (m_files.Names(NameBelow(m_options.folder, step.file))) return;
        const FileReport found = m_options.content(step.file);
        if (found.isSealed)
            Add(step.found, {step.file, kSealNeverRecorded, {}, {}, "is sealed, and no entry names it"});
        else if (IsReport(found, step.file))
            Add(step.found, {step.file, kPrintNeverRecorded, {}, {}, "is a report, and no entry names it"});
        // Others may write to a file without a seal: it is not finished. One with a seal is, and has to be readable.
        if (found.finding == kUnreadable && HasTraceOfSeal(step.file))
            Add(step.found, {step.file, kUnreadable, {}, {}, found.detail});
    }

    void Join(const ArchiveReport& found) {
        m_report.versions += found.versions;
        m_report.findingCount += found.findingCount;
        m_report.findings.insert(m_report.findings.end(), found.findings.begin(), found.findings.end());
    }

    const ArchiveOptions& m_options;
    qel::CabinetRecords m_cabinets;
    qel::FileRecords m_files;
    std::vector<Step> m_steps;
    ArchiveReport m_report;
};

}  // namespace

ArchiveReport CompareArchive(const std::vector<ReadTrail>& trails, const ArchiveOptions& options) {
    ArchiveReport report = Comparison(trails, options).Run();
    CompareSigners(trails, report);
    AddSigners(trails, report);
    return report;
}

}  // namespace tool
