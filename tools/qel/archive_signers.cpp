// What the entries of an archive's trails say about its findings and its file of allowed signers.
#include "archive_signers.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <span>

#include "checked_entries.h"

namespace tool {
namespace {

using Finding = ArchiveReport::Finding;

// Somebody may have put back what an earlier entry has recorded. By the path that the entry has.
using ChangedFiles = std::map<std::string, Finding*>;

void SetOlder(const qel::TrailEntry& entry, const ChangedFiles& changed) {
    const auto found = changed.find(entry.object);
    if (found == changed.end()) return;
    Finding& finding = *found->second;
    const qel::FileHash recorded{entry.size, entry.sha256};
    const bool isLatest = recorded == qel::FileHash{finding.version.size, finding.version.sha256};
    if (isLatest || !finding.found || *finding.found != recorded) return;
    finding.olderEntry = entry.number;
    finding.detail = "is an older state, which entry " + std::to_string(entry.number) + " has recorded";
}

}  // namespace

void CompareSigners(const std::vector<ReadTrail>& trails, ArchiveReport& report) {
    if (trails.empty()) return;
    std::error_code error;
    const auto path = std::filesystem::path(trails.back().file).parent_path() / "allowed_signers";
    if (!std::filesystem::is_regular_file(std::filesystem::symlink_status(path, error))) return;
    qel::TrailSigners signers;
    for (const ReadTrail& trail : trails)
        if (signers.ReadOn(Path(trail.file).View(), trail.last) == 0)
            throw Named(trail.file, LastRefusal("cannot be read", kInconsistent));
    std::vector<qel::SignersDifference> differences;
    if (signers.Compare(Path(path.string()).View(), differences) == 0)
        return report.Add({path.string(), kUnreadable, {}, {}, Why("cannot be read")});
    // Whoever forges the file may put any number of lines into it.
    const std::size_t listed = std::min(differences.size(), ArchiveReport::kMostOfACabinet);
    for (const qel::SignersDifference& difference : std::span(differences).first(listed)) {
        Finding finding{path.string(), kSignersDiffer, {}, {}, difference.text};
        finding.version.entry = difference.entry;
        finding.signer = difference.key;
        report.Add(std::move(finding));
    }
    if (listed == differences.size()) return;
    const std::size_t more = differences.size() - listed;
    report.Add({path.string(), kSignersDiffer, {}, {}, "and " + Count(more, "more difference", "more differences")});
    report.findingCount += more - 1;
}

// Only where findings are about entries: taking a whole trail apart takes time. Two trails have the same numbers, and
// not the same hash there.
void AddSigners(const std::vector<ReadTrail>& trails, ArchiveReport& report) {
    std::multimap<std::uint64_t, Finding*> wanted;
    ChangedFiles changed;
    for (Finding& finding : report.findings)
        if (finding.status == kFileChanged) changed.emplace(finding.recordedAs, &finding);
    for (Finding& finding : report.findings)
        if (finding.version.entry > 0 && finding.signer.empty()) wanted.emplace(finding.version.entry, &finding);
    if (wanted.empty()) return;
    for (const ReadTrail& trail : trails) {
        CheckedEntries entries(trail.file, trail.last);
        while (const std::optional<qel::TrailEntry> entry = entries.Next()) {
            SetOlder(*entry, changed);
            const auto [first, last] = wanted.equal_range(entry->number);
            for (auto each = first; each != last; ++each)
                if (each->second->version.sha256 == entry->sha256) each->second->signer = entries.Signer();
        }
    }
}

}  // namespace tool
