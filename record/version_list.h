#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "qellib10/platform/crypto/digest.h"
#include "qellib10/platform/storage/file.h"
#include "qellib10/record/recorded_version.h"
#include "qellib10/record/trail.h"
#include "qellib10/record/trail_entry.h"

namespace qel {

/// Whether an entry is about the registering of a version: the start of it, or one of its ends.
bool IsOfRegistering(const TrailEntry& entry);

/// What a trail says about the versions of one cabinet, and what the cabinet has. It keeps one record for each version.
/// Everything throws CFileException and DataError.
class VersionList {
public:
    explicit VersionList(std::string cabinet) : m_cabinet(std::move(cabinet)) {}

    /// Reads the trail once, up to an acknowledged entry. @throws DataError where the trail is not what was
    /// acknowledged
    void Read(const std::string& trailPath, const TrailReceipt& last);
    /// The same entry by entry, with the hash of each one's line; KeepInterrupted ends it.
    void Take(const TrailEntry& entry, const std::string& hash);
    void KeepInterrupted();
    /// Reads the cabinet once. Gives its versions one by one, since a forged cabinet has any number of them, and then
    /// those that are missing.
    void Compare(const CFile& cabinet, const std::function<void(const RecordedVersion& version)>& take);
    /// The same as a list.
    std::vector<RecordedVersion> With(const CFile& cabinet);
    /// Whether the last entry starts a registering, or says that it was abandoned: part of it may be in the cabinet.
    bool IsUnfinished() const noexcept { return m_isUnfinished; }
    /// Adds all that is known to a sum.
    void AddTo(Sha256Sum& sum) const;
    /// Those that Compare has not given, or all of them, as they were recorded.
    std::vector<RecordedVersion> Known() const;
    /// The same, as those that are missing.
    std::vector<RecordedVersion> Missing();

private:
    void TakeEnd(RecordedVersion version);
    RecordedVersion Compared(std::uint64_t number, std::uint64_t size, const std::string& sha256);

    std::string m_cabinet;                     // its GUID
    std::optional<RecordedVersion> m_started;  // the registering whose end has not come yet
    bool m_isUnfinished = false;
    std::map<std::uint64_t, RecordedVersion> m_known;  // by number; those that Compare has not given yet
};

}  // namespace qel
