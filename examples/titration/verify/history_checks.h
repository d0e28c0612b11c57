#pragma once

#include <string>
#include <vector>

#include <qellib10/qellib10.h>

#include "../made_files.h"

namespace titration {

/// What is kept of all results, opened for reading alone. Checks give what they found, and throw Failure when something
/// is wrong.
class KeptHistory {
public:
    explicit KeptHistory(const MadeFiles& made);

    /// As many as the cabinet or the records know, whichever are more.
    DWORD Versions() const;
    std::string CheckCabinet() const;
    std::string CheckRecords() const;
    std::string CheckVersion(DWORD version) const;

private:
    const MadeFiles& m_made;
    CHistoryCabinetFile m_cabinet;
    bool m_isOpen;
    std::vector<CHistoryRenewInfo> m_records;
    bool m_isRead = false;  // the records, to their end
};

}  // namespace titration
