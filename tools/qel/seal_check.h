#pragma once

#include "tool.h"

namespace tool {

/// What the last kilobytes of a file show of a seal that does not hold: kGood nothing, kChanged a whole trailer, kCut
/// the begin of one.
/// @param anyName a trailer for another name counts too; else it may belong to data within the file
Status TraceOfSeal(CQFile& file, bool anyName);

}  // namespace tool
