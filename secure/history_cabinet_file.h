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
    DWORD latestOffset = 0;  ///< of the latest version's header from the file's begin; 0 without versions
    DWORD versionCount = 0;  ///< also the number of the latest version
    CGuid guid;
    DWORD sum = 0;  ///< sum and CRC of the 28 bytes before them
    DWORD crc = 0;
};

}  // namespace qel

/// What stands before the data of a version in a cabinet.
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
/// const bool isThere = CQFile::IsExist("method.hcf") != 0;  // Create would replace it
/// if (!(isThere ? cabinet.Open("method.hcf", 0) : cabinet.Create("method.hcf"))) return;
/// if (!cabinet.RegistNewVersion("method.xml")) return;  // after 1 the version is on the disk
/// if (!cabinet.GetVersionFile(1, "first.xml")) return;  // also 0 when its data do not match their checksums
/// @endcode
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
/// Operations return 1, or 0 when a file is missing, damaged or refused by the system, or memory runs out; nothing is
/// thrown but std::bad_alloc by construction. Copies share the open file and its position; each has its own copy of the
/// header, which Open, Create and RegistNewVersion read. One thread at a time.
class QELLIB10_API CHistoryCabinetFile {
public:
    CHistoryCabinetFile();
    CHistoryCabinetFile(const CHistoryCabinetFile& other);
    CHistoryCabinetFile& operator=(const CHistoryCabinetFile& other);
    virtual ~CHistoryCabinetFile();

    /// Makes the missing folders of @p path and an empty file there, in place of what it held, for a cabinet with a new
    /// GUID. The file stays empty, and is none that Open takes, until the first version is registered.
    int Create(const char* path);
    /// Opens a cabinet whose header is right. After a failure nothing is open.
    /// @param readOnly not 0: for taking versions out only; then other objects may do so at the same time
    int Open(const char* path, int readOnly);
    /// Closes; also 1 when nothing is open. Count and GUID can still be asked for.
    int Close();
    /// Closes, and begins with a header without versions and with a new GUID.
    void Initialize();

    /// Appends the file at @p source as the next version. Others must not be writing to it.
    ///
    /// It takes the same time whatever the cabinet holds already. After a failure the cabinet is put back, and a copy
    /// of it as it was is left in the folder for temporary files, where a file must be possible before anything is
    /// written.
    /// @return 0, and the cabinet as it was, also when it is damaged, open for reading only, or would reach 4 GiB. When
    /// the disk refuses to put it back too, every further call gives 0 until the cabinet is opened again; nothing that
    /// was registered is lost then either
    int RegistNewVersion(const char* source);

    /// Number of versions, and of the latest one.
    DWORD GetLatestVersion() const { return m_header.versionCount; }

    /// Writes the latest version's data to @p target, replacing what it held.
    /// @return 0 also when the data do not match their sum and CRC, or are cut; @p target then holds what was found
    int GetLatestVersionFile(const char* target);
    /// The same for version @p version, 1 to GetLatestVersion(); any other leaves @p target alone.
    int GetVersionFile(DWORD version, const char* target);

    CGuid GetGUID() const { return m_header.guid; }

protected:
    /// No versions, a new GUID.
    void InitCabFileHeader();
    /// Reads the header from the file and checks it. Without an open file it is as InitCabFileHeader leaves it, then;
    /// after another failure as it was.
    int ReadCabFileHeader();
    /// Writes the header, takes its sum and CRC from the file, and writes it again. They are right the first time
    /// already, so the file never holds a wrong header.
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
    std::shared_ptr<bool> m_pIsHalfDone;        // a registration could not be undone; of the open file, too
};
