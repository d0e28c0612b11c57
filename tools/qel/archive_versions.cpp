#include "archive_versions.h"

#include <algorithm>
#include <map>

namespace tool {
namespace {

using Finding = ArchiveReport::Finding;

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

}  // namespace

void VersionFindings::Take(const std::string& cabinet, const qel::RecordedVersion& version) {
    if (version.state != qel::RecordedState::kMissing) ++m_report.versions;
    if (!version.IsFinding()) return;
    Take({m_file, StatusOf(version.state), cabinet, version, std::string(qel::StateText(version.state))});
    m_hasPlaces = true;
}

void VersionFindings::Take(const RenewalDifference& difference) {
    Take({m_file, difference.status, difference.cabinet, difference.version, difference.detail});
}

void VersionFindings::Take(Finding finding) {
    m_worst = std::max(m_worst, finding.status);
    ++m_report.findingCount;
    if (m_report.findings.size() < ArchiveReport::kMostOfACabinet) m_report.findings.push_back(std::move(finding));
}

ArchiveReport VersionFindings::End(const std::string& cabinet) {
    if (!m_file.empty() && m_hasPlaces) AddPlaces(m_file, m_report.findings);
    const std::uint64_t more = m_report.findingCount - m_report.findings.size();
    if (more > 0)
        m_report.findings.push_back(
            {m_file, m_worst, cabinet, {}, "and " + Count(more, "more finding", "more findings")});
    return std::move(m_report);
}

}  // namespace tool
