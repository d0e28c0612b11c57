#pragma once

#include "tool.h"

namespace tool {

/// What the last kilobytes of a file show of a seal that does not hold: kGood nothing, kChanged a whole trailer, kCut
/// the begin of one.
/// @param anyName a trailer for another name counts too; else it may belong to data within the file
Status TraceOfSeal(CQFile& file, bool anyName);

/// Whether the bytes from @p end on are the begin of a seal under the file's name, too short for TraceOfSeal.
bool BeginsSeal(CQFile& file, ULONGLONG end);

/// The length of what an intact seal stands behind, whatever the name in it; nothing without one.
std::optional<ULONGLONG> LengthBeforeSeal(CQFile& file);

}  // namespace tool
