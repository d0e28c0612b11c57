#include "qellib10/record/version_list.h"

#include <set>
#include <span>
#include <utility>

#include "qellib10/platform/crypto/digest.h"
#include "qellib10/platform/error.h"
#include "qellib10/platform/storage/guarded_file.h"
#include "qellib10/record/file_digest.h"
#include "qellib10/record/text_forms.h"
#include "qellib10/record/trail_file.h"
#include "qellib10/record/trail_kind.h"
#include "qellib10/record/trail_line.h"

namespace qel {
namespace {

// An application may have recovered something else.
bool IsEnd(const TrailEntry& entry) {
    return entry.action == trail_kind::kRegistered ||
           (entry.action == trail_kind::kRecovered && entry.after == trail_kind::kRegistered);
}

RecordedVersion Of(const TrailEntry& entry, const std::string& hash) {
    return {.version = entry.cabinetVersion,
            .state = entry.action == trail_kind::kRegistered  ? RecordedState::kRecorded
                     : entry.action == trail_kind::kRecovered ? RecordedState::kRecovered
                                                              : RecordedState::kInterrupted,
            .user = entry.user,
            .time = entry.time,
            .file = entry.object,
            .reason = entry.reason,
            .size = entry.size,
            .sha256 = entry.sha256,
            .entry = entry.number,
            .entryHash = hash};
}

// Goes through the versions that can be found.
template <class Take> void ForEachVersion(const CFile& cabinet, CabinetReader& reader, Take&& take) {
    try {
        while (const std::optional<CabinetVersion> version = reader.Next())
            take(version->number, DigestOf(cabinet, *version));
    } catch (const DataError&) {  // another one, or none, in its place: the rest cannot be found
    } catch (const CFileException& failure) {
        if (failure.m_cause != CFileException::endOfFile) throw;  // the same
    }
}

}  // namespace

bool IsOfRegistering(const TrailEntry& entry) {
    return entry.cabinetVersion > 0 && !entry.sha256.empty() &&
           (entry.action == trail_kind::kRegistering || entry.action == trail_kind::kAbandoned || IsEnd(entry));
}

void VersionList::Read(const std::string& trailPath, const TrailReceipt& last) {
    const GuardedFile file(trailPath, GuardedFile::Use::kRead);
    TrailLines lines(file, 0, file.Size());
    std::string hash(64, '0');
    for (std::uint64_t number = 1; number <= last.number; ++number) {
        const TrailLines::Line line = lines.Next();
        if (line.kind != TrailLines::Kind::kWhole) break;
        const TrailEntry entry = ReadEntry(line.text).entry;
        if (entry.previous != hash) break;
        hash = Hex(Sha256(line.text));
        Take(entry, hash);
    }
    if (hash != last.hash) throw DataError("the trail is not the one that was acknowledged: it has to be checked");
    KeepInterrupted();
}

void VersionList::Take(const TrailEntry& entry, const std::string& hash) {
    if (entry.cabinet != m_cabinet || !IsOfRegistering(entry)) return;
    m_isUnfinished = !IsEnd(entry);
    const bool isOfStarted = m_started && m_started->version == entry.cabinetVersion;
    if (entry.action == trail_kind::kRegistering) {
        KeepInterrupted();
        m_started = Of(entry, hash);
    } else if (IsEnd(entry)) {
        TakeEnd(Of(entry, hash));
    }
    if (isOfStarted && entry.action != trail_kind::kRegistering) m_started.reset();
}

// The first one counts: a later one would hide that somebody has put back an older cabinet.
void VersionList::TakeEnd(RecordedVersion version) {
    // What was given as the reason is in the entry before.
    if (version.state == RecordedState::kRecovered && m_started && m_started->version == version.version)
        version.reason = m_started->reason;
    RecordedVersion& known = m_known.try_emplace(version.version, version).first->second;
    if (known.state == RecordedState::kInterrupted) known = std::move(version);
}

void VersionList::KeepInterrupted() {
    if (m_started) m_known.try_emplace(m_started->version, *m_started);
    m_started.reset();
}

RecordedVersion VersionList::Compared(std::uint64_t number, std::uint64_t size, const std::string& sha256) {
    const auto known = m_known.find(number);
    if (known == m_known.end()) return {.version = number, .size = size, .sha256 = sha256};
    RecordedVersion version = std::move(known->second);
    m_known.erase(known);
    const bool isSame = version.size == size && version.sha256 == sha256;
    if (!isSame && !version.IsFinding()) version.state = RecordedState::kChanged;
    return version;
}

void VersionList::Compare(const CFile& cabinet, const std::function<void(const RecordedVersion& version)>& take) {
    CabinetReader reader(cabinet);
    const std::uint64_t latest = reader.Header().versionCount;
    std::uint64_t next = 1;
    const auto compare = [&](std::uint64_t number, const FileDigest& found) {
        take(Compared(number, found.size, found.sha256));
        ++next;
    };
    ForEachVersion(cabinet, reader, compare);
    // A damaged header may claim any number of versions: those that the trail knows, and one for all others.
    std::set<std::uint64_t> lost;
    for (auto known = m_known.lower_bound(next); known != m_known.end() && known->first <= latest; ++known)
        lost.insert(known->first);
    if (next <= latest) lost.insert(next);
    for (const std::uint64_t number : lost) take(Compared(number, 0, ""));
    for (const RecordedVersion& missing : Missing()) take(missing);
}

std::vector<RecordedVersion> VersionList::With(const CFile& cabinet) {
    std::vector<RecordedVersion> versions;
    Compare(cabinet, [&](const RecordedVersion& version) { versions.push_back(version); });
    return versions;
}

// The hash of an entry is that of all that it says.
void VersionList::AddTo(Sha256Sum& sum) const {
    sum.Add(std::as_bytes(std::span(m_isUnfinished ? "unfinished\n" : "finished\n", m_isUnfinished ? 11 : 9)));
    for (const auto& [number, version] : m_known) {
        const std::string line = std::to_string(number) + ' ' + std::to_string(static_cast<int>(version.state)) + ' ' +
                                 version.entryHash + '\n';
        sum.Add(std::as_bytes(std::span(line)));
    }
}

std::vector<RecordedVersion> VersionList::Known() const {
    std::vector<RecordedVersion> versions;
    for (const auto& [number, version] : m_known) versions.push_back(version);
    return versions;
}

std::vector<RecordedVersion> VersionList::Missing() {
    std::vector<RecordedVersion> versions;
    for (auto& [number, version] : m_known) {
        if (!version.IsFinding()) version.state = RecordedState::kMissing;
        versions.push_back(std::move(version));
    }
    m_known.clear();
    return versions;
}

}  // namespace qel
