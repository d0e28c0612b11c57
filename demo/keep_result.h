#pragma once

#include <string>

#include <qellib10/qellib10.h>

#include "demo/options.h"
#include "demo/result/history.h"
#include "demo/result/made_files.h"
#include "demo/result/session.h"

namespace titration {

/// From a measured curve to a result that is kept: read, computed, written and sealed, registered as a new version,
/// drawn, and laid out as a print job.
/// @throws Failure
/// @return what was done, stage by stage
std::string KeepResult(const Options& options, Session& session, History& history, ArchiveTrail& trail,
                       MadeFiles& made);

}  // namespace titration
