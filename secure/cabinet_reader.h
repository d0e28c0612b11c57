#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/storage/file.h"
#include "qellib10/platform/types.h"
#include "qellib10/secure/history_cabinet_file.h"

namespace qel {

/// Files that keep the versions of a document and the reasons for them.
enum class CabinetFileKind {
    kOther,
    kCabinet,  ///< of CHistoryCabinetFile; also one whose header is damaged and whose first version is in its place
    kRenewals  ///< records of CHistoryRenewInfo (ReadRenewalRecords)
};

/// The bytes that KindOfCabinetFile needs; a file may have fewer.
inline constexpr std::size_t kCabinetKindBytes = 40;

/// What kind a file is of, for programs that open files whatever their names are. This does not check that the file is
/// complete: its reader does.
/// @param start the first bytes of the file; those after kCabinetKindBytes do not count
QELLIB10_API CabinetFileKind KindOfCabinetFile(std::string_view start);

/// Whether bytes after the latest version may be the remains of a registration that was cut short. It writes a
/// version's data first and then the header before them, so there is the start of a header, or zeros in its place.
/// @param bytes the first ones after it, up to the end of the file or more than three
QELLIB10_API bool MayBeCutVersion(std::string_view bytes);

/// A version as it is stored in a cabinet.
struct CabinetVersion {
    DWORD number = 0;  ///< from 1
    DWORD size = 0;    ///< bytes of its data
    DWORD sum = 0;     ///< according to its header; see CabinetReader::IsIntact
    DWORD crc = 0;
    ULONGLONG dataAt = 0;  ///< from the start of the file
};

/// Goes through the versions of a cabinet, oldest first, and writes nothing. CHistoryCabinetFile keeps writers out and
/// takes versions out into files; a program that lists or checks cabinets must do neither.
///
/// @code
/// const CFile file("method.hcf", CFile::modeRead | CFile::shareDenyWrite);
/// qel::CabinetReader cabinet(file);
/// int damaged = 0;
/// while (const auto version = cabinet.Next()) damaged += !cabinet.IsIntact(*version);
/// @endcode
///
/// Operations throw CFileException if the file cannot be read or ends too early (endOfFile).
class QELLIB10_API CabinetReader {
public:
    /// @param cabinet open for reading; it must outlive the reader, and its position does not change
    /// @throws DataError if it has no correct cabinet header
    explicit CabinetReader(const CFile& cabinet);

    const CabinetHeader& Header() const noexcept { return m_header; }

    /// The next version; nothing after the latest one.
    /// @throws DataError if another version or none is in its place, or the latest one is not where the header says. In
    /// these cases, and if the file ends before the version does, later versions cannot be found
    std::optional<CabinetVersion> Next();
    /// The end of the version returned last. After the latest one there may be remains of an interrupted registration.
    ULONGLONG End() const noexcept { return m_end; }

    /// The latest version, where the header says. Works without Next().
    /// @throws DataError when there is no version, or another one
    CabinetVersion Latest() const;

    /// Bytes after the latest version, which is where the header says: none, or what an interrupted
    /// registration has left. Works without Next().
    /// @throws DataError when there is no version
    ULONGLONG BytesAfterLatest() const;

    /// Whether the data of a version match its sum and CRC.
    bool IsIntact(const CabinetVersion& version) const;

private:
    const CFile& m_file;
    CabinetHeader m_header;
    DWORD m_given = 0;
    ULONGLONG m_end;
};

}  // namespace qel
