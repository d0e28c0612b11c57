#pragma once

#include <string_view>
#include <vector>

#include "qellib10/base/guid.h"
#include "qellib10/file/q_file.h"
#include "qellib10/platform/export.h"
#include "qellib10/platform/types.h"
#include "qellib10/secure/history_cabinet_file.h"
#include "qellib10/secure/history_renew_info.h"

namespace qel {

/// Keeps all versions of a document in a cabinet. A file next to it records who registered each version, when and
/// why: one CHistoryRenewInfo per version, in their order. Kept apart, the two drift apart: a program that ends between
/// writing one and the other leaves a version without a record, and every later record is then taken for another
/// version's.
///
/// @code
/// qel::RenewalHistory history("results.hcf", "renewals.qel");
/// history.Register("variables.qel", "Mori", "blank raised");
/// history.TakeOut(1, "first.qel");
/// @endcode
///
/// One object at a time has the two files open; others may read them (CabinetReader, ReadRenewalRecords). Texts are in
/// the code page of the process. One thread at a time.
///
/// Operations throw CFileException where the file of records is refused, and DataError with a sentence about the file
/// for everything else.
class QELLIB10_API RenewalHistory {
public:
    /// Opens the files, and creates those that are missing, the cabinet by the first registration. The latest record
    /// is removed if it was cut, or torn by a power cut, and a version without a record gets one that names nobody.
    /// @throws DataError when the cabinet is in use or damaged, and when the records are damaged or those of another
    /// cabinet; both files are then as they were, but for a missing file of records, which is made, empty.
    /// CFileException with sharingViolation when another object has them open
    RenewalHistory(std::string_view cabinetPath, std::string_view recordPath);
    ~RenewalHistory();
    RenewalHistory(const RenewalHistory&) = delete;
    RenewalHistory& operator=(const RenewalHistory&) = delete;

    /// Makes the cabinet, without versions, if it is missing or an empty file, so that Guid() is on the disk before the
    /// first version is. It appears in one step. Without it the first registration makes the cabinet.
    /// @return whether it was made
    /// @throws CFileException
    bool MakeCabinet();

    /// Number of versions, and of the latest one.
    DWORD Latest() const { return m_cabinet.GetLatestVersion(); }
    /// The cabinet's own.
    CGuid Guid() const { return m_cabinet.GetGUID(); }
    /// Those of version 1, 2, ... to Latest(); the operator of a version is empty when nobody knows who registered it.
    const std::vector<CHistoryRenewInfo>& Records() const { return m_records; }

    /// Registers the file at @p source as the next version, now. Its record has the name of the file without its
    /// folder.
    /// @return the record, until the next registration
    /// @throws DataError when the cabinet does not take it; nothing has happened then. CFileException when the record
    /// cannot be written: the version is in the cabinet, and gets a record without names by the next registration or
    /// opening
    const CHistoryRenewInfo& Register(std::string_view source, std::string_view operatorName, std::string_view comment);

    /// The same with the bytes of the file @p copy and the name of another one, of which it is a copy.
    const CHistoryRenewInfo& RegisterCopy(std::string_view copy, std::string_view fileName,
                                          std::string_view operatorName, std::string_view comment);

    /// Writes the latest version and the header to the disk once more, with the bytes that the file has: a program that
    /// was killed, or whose flush has failed, may have left what can be read but is not on the disk. Without effect
    /// where there is no cabinet yet.
    /// @throws CFileException, also if the file ends before its latest version starts
    void FlushAgain();

    /// Writes version @p version, 1 to Latest(), to @p target, replacing what it held.
    /// @throws DataError when there is no such version, when @p target cannot be written, and when the version is
    /// damaged; @p target then holds what was found
    void TakeOut(DWORD version, std::string_view target);

private:
    void OpenCabinet();
    void ReadRecords();
    void AddMissing();
    void Add(CHistoryRenewInfo record);

    CString m_cabinetPath;
    CQFile m_recordFile;
    CHistoryCabinetFile m_cabinet;
    std::vector<CHistoryRenewInfo> m_records;
    bool m_isMade = false;  // by MakeCabinet: the first registration must not empty it
};

}  // namespace qel
