#pragma once

#include <array>
#include <memory>

#include "qellib10/base/guid.h"
#include "qellib10/file/q_file.h"
#include "qellib10/platform/export.h"
#include "qellib10/platform/types.h"

namespace qel {

class VersionEnds;

/// The header of a cabinet.
struct CabinetHeader {
    std::array<char, 4> magic = {};
    DWORD latestOffset = 0;  ///< of the latest version's header from the start of the file; 0 without versions
    DWORD versionCount = 0;  ///< also the number of the latest version
    CGuid guid;
    DWORD sum = 0;  ///< sum and CRC of the 28 bytes before them
    DWORD crc = 0;
};

}  // namespace qel

/// What precedes the data of a version in a cabinet.
struct _CAB_VERSIONHEADER {  // NOLINT: the name that applications know
    std::array<char, 4> magic = {};
    DWORD version = 0;
    DWORD dataSize = 0;  ///< bytes
    DWORD dataSum = 0;
    DWORD dataCRC = 0;
};

/// A cabinet keeps every registered version of a document in one file, oldest first, so that any earlier state can be
/// taken out again. It prevents the loss of a state that somebody signed: versions count from 1 and never change once
/// written, and a crash or a power cut while a new one is registered costs none of them.
///
/// @code
/// CHistoryCabinetFile cabinet;
/// if (!cabinet.Open("method.hcf", 0)) {
///     if (qel::LastFailure().systemError != 2) return;  // it may be there, and Create would empty it
///     if (!cabinet.Create("method.hcf")) return;
/// }
/// if (!cabinet.RegistNewVersion("method.xml")) return;  // qel::LastFailure() says why
/// if (!cabinet.GetVersionFile(1, "first.xml")) return;  // also 0 when its data do not match their checksums
/// @endcode
///
/// Programs that may make one cabinet at the same time use qel::RenewalHistory, all with the same file of records: of
/// two that call Create like this, the second one empties what the first has registered and closed.
///
///     offset 0    header, 36 bytes     "HCF1", where the latest version is, how many, GUID, sum and CRC of bytes 0-27
///     offset 36   version 1            "CVH1", number, size, sum, CRC (20 bytes), then the data
///     ...         version 2, 3, ...    appended; integers little-endian, so a cabinet ends below 4 GiB
///
/// A version's bytes are on the disk before the header names them, and the header is right at every moment. So after a
/// crash every version whose registration returned 1 is there, perhaps the one under way too. What is left of it
/// otherwise is cut off by the next registration.
///
/// While a cabinet is open others may read its file but not write to it, so no other object has it open for writing.
/// Operations return 1, or 0 when a file is missing, damaged or refused by the system, or memory runs out
/// (qel::LastFailure says which); nothing is thrown but std::bad_alloc by construction. Copies share the open file and
/// its position; each has its own copy of the header, which Open, Create and RegistNewVersion read. One thread at a
/// time.
class QELLIB10_API CHistoryCabinetFile {
public:
    CHistoryCabinetFile();
    CHistoryCabinetFile(const CHistoryCabinetFile& other);
    CHistoryCabinetFile& operator=(const CHistoryCabinetFile& other);
    virtual ~CHistoryCabinetFile();

    /// Creates the missing folders of @p path and an empty file there, replacing its content, for a cabinet with a new
    /// GUID. The file stays empty, and Open does not accept it, until the first version is registered.
    int Create(const char* path);
    /// Opens a cabinet whose header is correct. After a failure nothing is open.
    /// @param readOnly not 0: only for taking versions out; other objects may do so at the same time
    int Open(const char* path, int readOnly);
    /// Closes; also 1 if nothing is open. Count and GUID can still be read.
    int Close();
    /// Closes, and starts with a header without versions and with a new GUID.
    void Initialize();

    /// Appends the file at @p source as the next version. Others must not be writing to it.
    ///
    /// It takes the same time however much the cabinet contains. After a failure the cabinet is restored, and a copy of
    /// its former state is left in the folder for temporary files; a file is created there before anything is written.
    /// @return 0, and the cabinet does not change, also if it is damaged, open for reading only, or would reach 4 GiB.
    /// If the disk also refuses to restore it, every further call returns 0 until the cabinet is opened again; nothing
    /// registered is lost even then
    int RegistNewVersion(const char* source);

    /// Number of versions, and of the latest one.
    DWORD GetLatestVersion() const { return m_header.versionCount; }

    /// Writes the latest version's data to @p target, replacing its content.
    /// @return 0 also if the data do not match their sum and CRC, or are incomplete; @p target then contains what was
    /// found
    int GetLatestVersionFile(const char* target);
    /// The same for version @p version, 1 to GetLatestVersion(); any other does not change @p target.
    int GetVersionFile(DWORD version, const char* target);

    CGuid GetGUID() const { return m_header.guid; }

protected:
    /// No versions, a new GUID.
    void InitCabFileHeader();
    /// Reads the header from the file and checks it. Without an open file the header is as after InitCabFileHeader;
    /// after any other failure it does not change.
    int ReadCabFileHeader();
    /// Writes the header, reads its sum and CRC back from the file, and writes it again. They are already correct the
    /// first time, so the file never contains a wrong header.
    int UpdateCabFileHeader();
    /// No version, no data.
    static void InitCabVerHeader(_CAB_VERSIONHEADER& header);

    std::shared_ptr<CQFile> m_pFile;  ///< never null; shared by copies on purpose: one cabinet, one opening
    qel::CabinetHeader m_header;

private:
    void WriteHeader();
    void AppendOrUndo(const CFile& source, DWORD size, ULONGLONG end);
    void Append(const CFile& source, DWORD size, ULONGLONG end);

    std::shared_ptr<qel::VersionEnds> m_pEnds;  // of the open file, so shared by copies as well
    std::shared_ptr<bool> m_pIsHalfDone;        // a registration could not be undone; of the open file too
};
