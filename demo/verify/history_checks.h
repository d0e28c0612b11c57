#pragma once

#include <string>
#include <vector>

#include <qellib10/qellib10.h>

#include "demo/result/made_files.h"

namespace titration {

/// The kept results, opened only for reading. Checks return what they found, and throw Failure if something is wrong.
class KeptHistory {
public:
    explicit KeptHistory(const MadeFiles& made);

    /// The number in the cabinet or in the records, whichever is larger.
    DWORD Versions() const;
    const std::vector<CHistoryRenewInfo>& Records() const { return m_records; }
    /// @throws Failure if there is none
    const CHistoryRenewInfo& Record(DWORD version) const;

    std::string CheckCabinet() const;
    std::string CheckRecords() const;
    /// The values of a version.
    /// @throws Failure if it is damaged or missing
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
    std::string m_whyNotOpen, m_whyNotRead;
};

}  // namespace titration
