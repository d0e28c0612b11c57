#pragma once

#include <string>
#include <vector>

#include <qellib10/qellib10.h>

namespace titration {

/// Reads records up to the end of @p file or the first incomplete one; the file's position is then after the last
/// complete one.
/// @throws CFileException
std::vector<CHistoryRenewInfo> ReadRenewals(CQFile& file);

/// When, by whom and why.
std::string Described(const CHistoryRenewInfo& record);

}  // namespace titration
