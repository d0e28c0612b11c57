#include "history_checks.h"

#include <algorithm>

#include "../number.h"
#include "../renewals.h"
#include "../result_file.h"
#include "checks.h"
#include "temporary_file.h"

namespace titration {

KeptHistory::KeptHistory(const MadeFiles& made)
    : m_made(made), m_isOpen(m_cabinet.Open(made.Path("results.hcf").c_str(), 1) != 0) {
    CQFile file;
    if (file.Open(made.Path("renewals.qel").c_str(), CFile::modeRead | CFile::shareDenyNone) == 0) return;
    m_records = ReadRenewals(file);
    m_isRead = file.GetPosition() == file.GetLength();
}

DWORD KeptHistory::Versions() const {
    return std::max(m_isOpen ? m_cabinet.GetLatestVersion() : 0, static_cast<DWORD>(m_records.size()));
}

std::string KeptHistory::CheckCabinet() const {
    Require(m_isOpen, "is missing or in use, or its header is damaged");
    return std::string(m_cabinet.GetGUID().GetString()) + ", header with " +
           Counted(m_cabinet.GetLatestVersion(), "version");
}

std::string KeptHistory::CheckRecords() const {
    Require(m_isRead, "is missing or in use, or a record is damaged");
    Require(m_records.size() == Versions(), "does not have one for each of " + Counted(Versions(), "version"));
    m_made.RequireAsMade("renewals.qel");
    return Counted(Versions(), "record");
}

std::string KeptHistory::CheckVersion(DWORD version) const {
    Require(m_isOpen, "cannot be read");
    const TemporaryFile data;
    CHistoryCabinetFile cabinet = m_cabinet;  // shares the opening
    Require(cabinet.GetVersionFile(version, data.Path().c_str()) != 0,
            "its data do not fit its header, or are not there");
    const auto isSame = [&](const std::string& name) {
        return CQFile::CompareFile(data.Path().c_str(), m_made.Path(name).c_str()) != 0;
    };
    LoadRenamedVariables(data.Path());
    Require(version < Versions() || isSame("variables.qel"), "is the latest one, but differs from variables.qel");

    std::string found = "data fit their header and their seal";
    const std::string takenOut = "version-" + std::to_string(version) + ".qel";
    if (CQFile::IsExist(m_made.Path(takenOut).c_str()) != 0) {
        Require(isSame(takenOut), "differs from " + takenOut);
        found += ", and are those in " + takenOut;
    }
    return version <= m_records.size() ? found + "; " + Described(m_records[version - 1]) : found;
}

}  // namespace titration
