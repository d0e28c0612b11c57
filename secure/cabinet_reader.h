#pragma once

#include <optional>

#include "qellib10/platform/export.h"
#include "qellib10/platform/storage/file.h"
#include "qellib10/platform/types.h"
#include "qellib10/secure/history_cabinet_file.h"

namespace qel {

/// A version as it lies in a cabinet.
struct CabinetVersion {
    DWORD number = 0;  ///< from 1
    DWORD size = 0;    ///< bytes of its data
    DWORD sum = 0;     ///< as its header says; see CabinetReader::IsIntact
    DWORD crc = 0;
    ULONGLONG dataAt = 0;  ///< from the file's begin
};

/// Goes through the versions of a cabinet, oldest first, and writes nothing anywhere: for programs that list cabinets
/// or check them.
///
///     const CFile file("method.hcf", CFile::modeRead | CFile::shareDenyWrite);
///     qel::CabinetReader cabinet(file);
///     while (const auto version = cabinet.Next()) damaged += !cabinet.IsIntact(*version);
///
/// Operations throw CFileException where the file cannot be read, or ends too early (endOfFile).
class QELLIB10_API CabinetReader {
public:
    /// @param cabinet open for reading; it outlives the reader, and its position stays
    /// @throws DataError for what has no right header of a cabinet
    explicit CabinetReader(const CFile& cabinet);

    const CabinetHeader& Header() const noexcept { return m_header; }

    /// The next version; nothing once the latest one was given.
    /// @throws DataError when another version or none stands in its place, or the latest one is not where the header
    /// says. Neither then, nor when the file ends before the version does, can those behind it be found
    std::optional<CabinetVersion> Next();
    /// Where the last version that was given ends. Behind the latest one may stand what a registration has left that
    /// was cut short.
    ULONGLONG End() const noexcept { return m_end; }

    /// Whether the data of a version match its sum and CRC.
    bool IsIntact(const CabinetVersion& version) const;

private:
    const CFile& m_file;
    CabinetHeader m_header;
    DWORD m_given = 0;
    ULONGLONG m_end;
};

}  // namespace qel
