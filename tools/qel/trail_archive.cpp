#include "trail_archive.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <memory>
#include <set>

#include "archive_signers.h"
#include "archive_versions.h"
#include "content_check.h"
#include "tree.h"
#include "workers.h"

namespace tool {
namespace {

using Finding = ArchiveReport::Finding;

qel::CabinetFileKind KindOfCabinetFile(const std::string& path) {
    CQFile file;
    Open(file, path, CFile::modeRead | CFile::shareDenyNone);
    std::array<char, qel::kCabinetKindBytes> start = {};
    const UINT size = file.Read(start.data(), static_cast<UINT>(start.size()));
    return qel::KindOfCabinetFile({start.data(), size});
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

// One file, or one path that an entry names. Each is looked at by itself, so that several are at once.
struct Step {
    std::string file;
    qel::CabinetFileKind kind = qel::CabinetFileKind::kOther;
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
        const Tree tree = TreeToCompare();
        AddTree(tree);
        std::vector<Step> named;
        std::set<std::string> names;
        if (m_options.named)
            for (const std::string& file : tree.files) names.insert(NameInArchive(file));
        for (const qel::RecordedFile& file : m_files.All())
            if (!m_options.named || names.contains(file.path)) named.push_back({.file = file.path, .recorded = file});
        ForEachAtOnce(m_steps.size(), m_options.jobs, [&](std::size_t i) { Take(m_steps[i]); });
        ForEachAtOnce(named.size(), m_options.jobs, [&](std::size_t i) { Take(named[i]); });
        for (const Step& step : m_steps) m_report.Join(step.found);
        if (!m_options.named) AddMissing();
        for (const Step& step : named) m_report.Join(step.found);
        m_report.files = named.size();
        return std::move(m_report);
    }

private:
    Tree TreeToCompare() const {
        if (!m_options.named) return FilesBelow(m_options.folder, m_options.except);
        Tree tree;
        for (const auto& [file, name] : *m_options.named) tree.files.push_back(file);
        return tree;
    }

    void AddMissing() {
        for (const qel::CabinetRecords::Cabinet& missing : m_cabinets.Rest()) {
            VersionFindings versions("");
            for (const qel::RecordedVersion& version : missing.versions) versions.Take(missing.guid, version);
            m_report.Join(versions.End(missing.guid));
        }
    }

    std::string NameInArchive(const std::string& file) const {
        return m_options.named ? m_options.named->at(file) : NameBelow(m_options.folder, file);
    }
    // Whether an entry names the file.
    bool IsNamed(const std::string& file) const { return m_files.Names(NameInArchive(file)); }

    // Of several copies of a cabinet the first one by name is the one that the trails know.
    void AddTree(const Tree& tree) {
        for (const std::string& folder : tree.unreadableFolders)
            Add(m_report, {folder, kUnreadable, {}, {}, "the folder cannot be read"});
        for (const Tree::Other& other : tree.others) {
            if (!IsNamed(other.path))
                Add(m_report, {other.path, kNotAFile, {}, {}, "is a " + other.kind + ", which no entry can record"});
        }
        for (const std::string& file : tree.files) {
            Step& step = m_steps.emplace_back();
            step.file = file;
            Guard(step, [&] { step.kind = KindOfCabinetFile(file); });
        }
        if (std::ranges::find(m_steps, qel::CabinetFileKind::kRenewals, &Step::kind) != m_steps.end()) {
            m_renewals.emplace(m_cabinets.All());
            m_renewalSum = m_cabinets.Sum();
        }
        for (Step& step : m_steps)
            if (step.kind == qel::CabinetFileKind::kCabinet) Guard(step, [&] { TakeOut(step); });
    }

    void TakeOut(Step& step) {
        ++m_report.cabinets;
        auto known = std::make_unique<qel::CabinetRecords>();
        if (m_cabinets.TakeOut(Path(step.file).View(), *known) == 0) throw LastRefusal("cannot be read", kBadHeader);
        step.cabinet = std::move(known);
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
                if (step.kind == qel::CabinetFileKind::kRenewals) CompareRenewals(step);
                RequireRecorded(step);
            }
        });
    }

    FileReport Known(const std::string& file, const std::string& purpose, const Resume::Checking& check) {
        return m_options.resume != nullptr ? m_options.resume->Check(file, purpose, check) : check(file);
    }

    void CompareCabinet(Step& step) {
        const auto compare = [&](const std::string& file) -> FileReport {
            VersionFindings versions(file);
            std::string guid;
            const auto take = [&](const qel::RecordedVersion& version) { versions.Take(guid, version); };
            const bool isUnfinished = step.cabinet->IsUnfinished();
            if (step.cabinet->Compare(Path(file).View(), guid, take) == 0)
                throw LastRefusal("cannot be read", kBadHeader);
            step.found = versions.End(guid);
            if (!isUnfinished) RequireNoRest(step, guid);
            return {"cabinet", false, WorstOf(step.found), std::to_string(step.found.versions)};
        };
        const FileReport report = Known(step.file, "cabinet-" + step.cabinet->Sum(), compare);
        step.found.versions = qel::ReadWholeNumber<std::size_t>(report.detail).value_or(0);
    }

    // Where the versions cannot be found this is a finding already. A seal is RequireSealRecorded's matter.
    void RequireNoRest(Step& step, const std::string& guid) {
        CQFile file;
        Open(file, step.file, CFile::modeRead | CFile::shareDenyNone);
        const std::optional<ULONGLONG> rest = RestOf(file);
        if (!rest || *rest == 0 || HasTraceOfSeal(step.file)) return;
        const std::string detail = Count(*rest, "byte is", "bytes are") + " after its latest version";
        Finding finding{step.file, kInconsistent, guid, {}, detail};
        finding.byte = file.GetLength() - *rest;
        Add(step.found, finding);
    }

    static std::optional<ULONGLONG> RestOf(const CFile& cabinet) {
        try {
            return qel::CabinetReader(cabinet).BytesAfterLatest();
        } catch (const qel::DataError&) {
            return std::nullopt;
        } catch (const CFileException&) {
            return std::nullopt;
        }
    }

    void CompareRenewals(Step& step) {
        Known(step.file, "renewals-" + m_renewalSum, [&](const std::string& path) -> FileReport {
            CQFile file;
            Open(file, path, CFile::modeRead | CFile::shareDenyNone);
            VersionFindings versions(path);
            for (const RenewalDifference& each : m_renewals->Compare(RenewalsOf(file).whole)) versions.Take(each);
            step.found = versions.End("");
            return {"renewals", false, WorstOf(step.found), ""};
        });
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
        if (HasTraceOfSeal(step.file) && !IsNamed(step.file))
            Add(step.found, {step.file, kSealNeverRecorded, {}, {}, "is sealed, and no entry names it"});
    }

    void RequireRecorded(Step& step) {
        if (IsNamed(step.file)) return;
        const FileReport found = m_options.content(step.file);
        if (found.isSealed)
            Add(step.found, {step.file, kSealNeverRecorded, {}, {}, "is sealed, and no entry names it"});
        else if (IsReport(found, step.file))
            Add(step.found, {step.file, kPrintNeverRecorded, {}, {}, "is a report, and no entry names it"});
        // Others may write to a file without a seal: it is not finished. One with a seal is, and has to be readable.
        if (found.finding == kUnreadable && HasTraceOfSeal(step.file))
            Add(step.found, {step.file, kUnreadable, {}, {}, found.detail});
    }

    const ArchiveOptions& m_options;
    qel::CabinetRecords m_cabinets;
    qel::FileRecords m_files;
    std::optional<RenewalComparison> m_renewals;
    std::string m_renewalSum;  // over all that the trails say about versions
    std::vector<Step> m_steps;
    ArchiveReport m_report;
};

}  // namespace

ArchiveReport CompareArchive(const std::vector<ReadTrail>& trails, const ArchiveOptions& options) {
    ArchiveReport report = Comparison(trails, options).Run();
    if (!options.named) CompareSigners(trails, report);
    AddSigners(trails, report);
    return report;
}

}  // namespace tool
