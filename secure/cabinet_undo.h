#pragma once

#include "qellib10/platform/storage/file.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/secure/history_cabinet_file.h"

namespace qel {

/// Reverses a failed registration. A registration changes the header and what is after the last version, and nothing in
/// between; so only the former header and the end of the versions must be remembered.
class CabinetUndo {
public:
    /// @param header the cabinet's former header
    /// @param end the end of its versions; remains of a crash after them are not restored
    /// @throws CFileException if no file can be created in the folder for temporary files
    CabinetUndo(CFile& cabinet, const CabinetHeader& header, ULONGLONG end);
    CabinetUndo(const CabinetUndo&) = delete;
    CabinetUndo& operator=(const CabinetUndo&) = delete;

    const CabinetHeader& Header() const noexcept { return m_header; }

    /// Restores the file. The header is on disk before the file is shortened: in the other order a power failure would
    /// leave a header that refers to missing data.
    /// @throws CFileException; the header in the file is then the old one or that of the registration, and correct
    void Run() const;

    /// Leaves a copy of the former cabinet in the folder for temporary files, for people to look at. If it cannot be
    /// written, nothing stays there. It is not flushed.
    void LeaveCopy() const;

private:
    void Copy(const CString& name) const;

    CFile& m_cabinet;
    CabinetHeader m_header;
    ULONGLONG m_length;  // 0 for a cabinet that was only created
};

}  // namespace qel
