#pragma once

#include "qellib10/platform/storage/file.h"
#include "qellib10/platform/text/string.h"

namespace qel {

/// A copy of a cabinet in the folder for temporary files, for the time of a registration. It is not flushed: what it is
/// for is a registration that fails, not a system that does. Once taken it stays there, unless dropped.
class CabinetBackup {
public:
    CabinetBackup();
    ~CabinetBackup();
    CabinetBackup(const CabinetBackup&) = delete;
    CabinetBackup& operator=(const CabinetBackup&) = delete;

    /// @throws CFileException, and DataError when the cabinet has become shorter meanwhile; nothing stays there then
    void Take(const CFile& cabinet);
    /// Lets it be deleted.
    void Drop() { m_stays = false; }

private:
    CString m_name;
    bool m_stays = false;
};

}  // namespace qel
