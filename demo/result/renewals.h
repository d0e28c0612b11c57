#pragma once

#include <string>
#include <vector>

#include <qellib10/qellib10.h>

namespace titration {

/// Reads records up to the end of @p file or the first one that is not whole; the file's position is behind the last
/// whole one then.
/// @throws CFileException
std::vector<CHistoryRenewInfo> ReadRenewals(CQFile& file);

/// When, by whom and why.
std::string Described(const CHistoryRenewInfo& record);

}  // namespace titration
