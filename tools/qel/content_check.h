#pragma once

#include "tool.h"

namespace tool {

/// The kind of a file by its first bytes: cabinet, variables, renewals, job, xml (an enciphered document), else data.
std::string KindOf(CFile& file);

/// @throws Failure kBadHeader, CFileException
qel::CabinetReader CabinetOf(const CFile& file);

struct ContentReport {
    ULONGLONG end = 0;  ///< where the content ends that was understood
    std::string note;
};

/// Goes through all of a file of that kind.
/// @throws Failure, and as library operations do, when it is damaged; Failure kUnknown for data
ContentReport ContentOf(CFile& file, const std::string& kind);

/// What bytes from @p end on, behind a whole content of that kind, mean: kGood where a registration may have left them
/// that was cut short, kCut for the begin of another record, else kInconsistent.
Status StatusOfRest(CFile& file, const std::string& kind, ULONGLONG end);

}  // namespace tool
