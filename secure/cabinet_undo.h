#pragma once

#include "qellib10/platform/storage/file.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/secure/history_cabinet_file.h"

namespace qel {

/// Takes a registration back that has failed. A registration changes the header and what is after the last version, and
/// nothing in between; so the header from before, and where the versions end, are all that has to be remembered.
class CabinetUndo {
public:
    /// @param header the cabinet's from before
    /// @param end where its versions end; what a crash has left after them does not come back
    /// @throws CFileException when no file can be made in the folder for temporary files
    CabinetUndo(CFile& cabinet, const CabinetHeader& header, ULONGLONG end);
    CabinetUndo(const CabinetUndo&) = delete;
    CabinetUndo& operator=(const CabinetUndo&) = delete;

    const CabinetHeader& Header() const noexcept { return m_header; }

    /// Makes the file what it was. The header is on the disk before the file is cut: the other way round a power cut
    /// would leave a header that names data which are gone.
    /// @throws CFileException; the header in the file is then the old one or that of the registration, and right
    void Run() const;

    /// Leaves a copy of the cabinet as it was in the folder for temporary files, for people to look at. Nothing stays
    /// there when it cannot be written. It is not flushed.
    void LeaveCopy() const;

private:
    void Copy(const CString& name) const;

    CFile& m_cabinet;
    CabinetHeader m_header;
    ULONGLONG m_length;  // 0 of a cabinet that was only created
};

}  // namespace qel
