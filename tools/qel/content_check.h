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

}  // namespace tool
