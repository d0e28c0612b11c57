#include "demo/verify/history_checks.h"

#include <algorithm>
#include <utility>

#include "demo/result/result_file.h"
#include "demo/support/file_step.h"
#include "demo/support/number.h"
#include "demo/support/temporary_file.h"
#include "demo/verify/checks.h"

namespace titration {

KeptHistory::KeptHistory(const MadeFiles& made)
    : m_made(made), m_isOpen(m_cabinet.Open(made.Path("results.hcf").c_str(), 1) != 0) {
    if (!m_isOpen) m_whyNotOpen = Why("cannot be opened");
    CQFile file;
    if (file.Open(made.Path("renewals.qel").c_str(), CFile::modeRead | CFile::shareDenyNone) == 0) {
        m_whyNotRead = Why("cannot be opened");
        return;
    }
    qel::RenewalRecords found = qel::ReadRenewalRecords(file);
    m_isRead = found.end == file.GetLength();
    if (!m_isRead) m_whyNotRead = found.isCut ? "ends within a record" : "a record is damaged";
    m_records = std::move(found.whole);
}

DWORD KeptHistory::Versions() const {
    return std::max(m_isOpen ? m_cabinet.GetLatestVersion() : 0, static_cast<DWORD>(m_records.size()));
}

std::string KeptHistory::CheckCabinet() const {
    Require(m_isOpen, m_whyNotOpen);
    const ULONGLONG bytesAfter = BytesAfterLastVersion();
    Require(bytesAfter == 0, "has " + Counted(static_cast<long long>(bytesAfter), "byte") + " after the last version");
    return std::string(m_cabinet.GetGUID().GetString()) + ", header with " +
           Counted(m_cabinet.GetLatestVersion(), "version");
}

// Versions are never read from there: an interrupted registration leaves such bytes.
ULONGLONG KeptHistory::BytesAfterLastVersion() const {
    const std::string path = m_made.Path("results.hcf");
    return OnFile(path, [&] {
        CQFile file;
        OpenForReading(file, path);
        try {
            return qel::CabinetReader(file).BytesAfterLatest();
        } catch (const qel::DataError& error) {
            throw Failure(error.what());
        }
    });
}

std::string KeptHistory::CheckRecords() const {
    Require(m_isRead, m_whyNotRead);
    Require(m_records.size() == Versions(), "does not have one for each of " + Counted(Versions(), "version"));
    m_made.RequireAsMade("renewals.qel");
    return Counted(Versions(), "record");
}

const CHistoryRenewInfo& KeptHistory::Record(DWORD version) const {
    Require(version <= m_records.size(), "renewals.qel has no record of version " + std::to_string(version));
    return m_records[version - 1];
}

void KeptHistory::TakeOut(DWORD version, const std::string& path) const {
    Require(m_isOpen, "results.hcf cannot be read: " + m_whyNotOpen);
    CHistoryCabinetFile cabinet = m_cabinet;  // shares the opening
    RequireDone(cabinet.GetVersionFile(version, path.c_str()), "cannot be taken out");
}

CCalcVariableList KeptHistory::Variables(DWORD version) const {
    const TemporaryFile data;
    TakeOut(version, data.Path());
    return LoadRenamedVariables(data.Path());
}

void KeptHistory::RequireVersionIn(const std::string& name, DWORD version) const {
    const TemporaryFile data;
    TakeOut(version, data.Path());
    if (CQFile::CompareFile(data.Path().c_str(), m_made.Path(name).c_str()) != 0) return;
    const bool isRead = qel::LastFailure().kind == qel::FailureKind::kData;
    throw Failure(isRead ? "differs from version " + std::to_string(version) + " in results.hcf"
                         : Why("cannot be compared"));
}

}  // namespace titration
