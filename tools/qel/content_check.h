#pragma once

#include "tool.h"

namespace tool {

/// The kind of a file by its first bytes: cabinet, variables, renewals, job, pdf, trail, xml (an enciphered document),
/// else data.
std::string KindOf(CFile& file);

/// @throws Failure kBadHeader, CFileException
qel::CabinetReader CabinetOf(const CFile& file);

/// @throws Failure kTooLarge, CFileException
qel::RenewalRecords RenewalsOf(CFile& file);

/// A version of a cabinet whose data do not match their checksums.
struct DamagedVersion {
    DWORD number = 0;
    ULONGLONG byte = 0;  ///< where its data start
    DWORD size = 0;
};

struct ContentReport {
    ULONGLONG end = 0;  ///< the end of the content that was understood
    std::string note;
    std::vector<DamagedVersion> damaged = {};  ///< at most 100; the note has the number of all
};

/// Goes through the whole content of a file of that kind.
/// Damaged versions of a cabinet are in the result. @throws Failure, and like library operations, if it is damaged;
/// Failure kUnknown for data
ContentReport ContentOf(CFile& file, const std::string& kind);

/// The meaning of bytes from @p end on, after a complete content of that kind: kGood if they can be the remains of an
/// interrupted registration, kCut for the start of another record, else kInconsistent.
Status StatusOfRest(CFile& file, const std::string& kind, ULONGLONG end);

}  // namespace tool
