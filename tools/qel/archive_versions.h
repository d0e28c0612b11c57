#pragma once

#include <string>

#include "renewal_entries.h"
#include "trail_archive.h"

namespace tool {

/// The findings about the versions of one cabinet, or about its renewal records: at most kMostOfACabinet, and one for
/// the rest.
class VersionFindings {
public:
    /// @param file the cabinet or its records; empty: it is not there
    explicit VersionFindings(std::string file) : m_file(std::move(file)) {}

    /// @param cabinet its GUID
    void Take(const std::string& cabinet, const qel::RecordedVersion& version);
    void Take(const RenewalDifference& difference);
    /// All of them, with the places of versions in the cabinet.
    ArchiveReport End(const std::string& cabinet);

private:
    void Take(ArchiveReport::Finding finding);

    std::string m_file;
    ArchiveReport m_report;
    Status m_worst = kGood;
    bool m_hasPlaces = false;  // the file is the cabinet
};

}  // namespace tool
