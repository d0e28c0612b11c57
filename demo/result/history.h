#pragma once

#include <string>

#include <qellib10/qellib10.h>

namespace titration {

/// All results: the cabinet "results.hcf" keeps each as a version, "renewals.qel" who registered it, when and why, one
/// record per version. Only one program at a time has them open; others may read.
class History {
public:
    /// Opens the files in @p folder; missing files are created.
    /// @throws Failure if another program has them open, if one is damaged, and if they do not belong together
    explicit History(const CString& folder);

    DWORD Latest() const { return m_kept.Latest(); }
    /// The record of a version from 1 to the latest one.
    const CHistoryRenewInfo& Record(DWORD version) const { return m_kept.Records().at(version - 1); }
    /// Registers the file at @p path as the next version.
    /// @throws Failure
    const CHistoryRenewInfo& Register(const std::string& path, const std::string& operatorName,
                                      const std::string& comment);
    /// Writes version @p version to @p path; its folder is created.
    /// @throws Failure if there is no such version, or it is damaged
    const CHistoryRenewInfo& TakeOut(DWORD version, const std::string& path);
    /// The cabinet's GUID, and its latest versions with their records, one per line.
    std::string Listed(const std::string& indent) const;

private:
    qel::RenewalHistory m_kept;
};

}  // namespace titration
