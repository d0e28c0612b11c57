#pragma once

#include <string>
#include <vector>

#include <qellib10/qellib10.h>

#include "demo/result/made_files.h"

namespace titration {

/// What is kept of all results, opened for reading alone. Checks give what they found, and throw Failure when something
/// is wrong.
class KeptHistory {
public:
    explicit KeptHistory(const MadeFiles& made);

    /// As many as the cabinet or the records know, whichever are more.
    DWORD Versions() const;
    const std::vector<CHistoryRenewInfo>& Records() const { return m_records; }
    /// @throws Failure when there is none
    const CHistoryRenewInfo& Record(DWORD version) const;

    std::string CheckCabinet() const;
    std::string CheckRecords() const;
    /// The values that a version holds.
    /// @throws Failure when it is damaged or not there
    CCalcVariableList Variables(DWORD version) const;
    /// @throws Failure unless the file has the bytes of a version
    void RequireVersionIn(const std::string& name, DWORD version) const;

private:
    ULONGLONG BytesAfterLastVersion() const;
    void TakeOut(DWORD version, const std::string& path) const;

    const MadeFiles& m_made;
    CHistoryCabinetFile m_cabinet;
    bool m_isOpen;
    std::vector<CHistoryRenewInfo> m_records;
    bool m_isRead = false;  // the records, to their end
};

}  // namespace titration
