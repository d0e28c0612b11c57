#pragma once

#include "tool.h"

namespace tool {

/// The kind of a file by its first bytes: cabinet, variables, renewals, job, pdf, trail, xml (an enciphered document),
/// else data.
std::string KindOf(CFile& file);

/// @throws Failure kBadHeader, CFileException
qel::CabinetReader CabinetOf(const CFile& file);

struct ContentReport {
    ULONGLONG end = 0;  ///< the end of the content that was understood
    std::string note;
};

/// Goes through the whole content of a file of that kind.
/// @throws Failure, and like library operations, if it is damaged; Failure kUnknown for data
ContentReport ContentOf(CFile& file, const std::string& kind);

/// The meaning of bytes from @p end on, after a complete content of that kind: kGood if they can be the remains of an
/// interrupted registration, kCut for the start of another record, else kInconsistent.
Status StatusOfRest(CFile& file, const std::string& kind, ULONGLONG end);

}  // namespace tool
