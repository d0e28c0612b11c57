#pragma once

#include <string>
#include <vector>

#include <qellib10/qellib10.h>

#include "demo/result/archive_trail.h"

namespace titration {

/// All results: the cabinet "results.hcf" keeps each as a version, "renewals.qel" who registered it, when and why, one
/// record per version, and the trail has entries with the hash of each. Only one program at a time has them open;
/// others may read.
class History {
public:
    /// Opens the files in @p folder; missing files are created.
    /// @throws Failure if another program has them open, if one is damaged, and if they do not belong together
    History(const CString& folder, ArchiveTrail& trail);

    DWORD Latest() const { return static_cast<DWORD>(m_kept.Latest()); }
    std::string Guid() const { return m_kept.Guid(); }
    /// The record of a version from 1 to the latest one.
    const CHistoryRenewInfo& Record(DWORD version) const { return m_records.at(version - 1); }
    /// Registers the file at @p path as the next version.
    /// @throws Failure
    const CHistoryRenewInfo& Register(const std::string& path, const std::string& comment);
    /// Writes version @p version to @p path; its folder is created.
    /// @throws Failure if there is no such version, or it is damaged
    const CHistoryRenewInfo& TakeOut(DWORD version, const std::string& path, const std::string& reason);
    /// All versions, with what the trail says about them.
    /// @throws Failure
    std::vector<qel::RecordedVersion> Recorded();
    /// One of them. @throws Failure also if there is no such version
    qel::RecordedVersion Recorded(DWORD version);
    /// The cabinet's GUID, and its latest versions with their records, one per line.
    std::string Listed(const std::string& indent) const;

private:
    void RequireVersion(DWORD version) const;
    void ReadRecords();

    const std::string m_recordPath;
    ArchiveTrail& m_trail;
    qel::RecordedCabinet m_kept;
    std::vector<CHistoryRenewInfo> m_records;
};

}  // namespace titration
