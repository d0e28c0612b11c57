#pragma once

#include <string>

#include "demo/result/archive_trail.h"
#include "demo/result/history.h"
#include "demo/result/session.h"

namespace titration {

/// Prints the report on a version together with who has signed it, as "signed-N.pdf".
/// @return what was done
/// @throws Failure for a version that is not approved, and for one that was changed since its first entry
std::string PrintSigned(DWORD version, Session& session, History& history, ArchiveTrail& trail, MadeFiles& made);

/// Writes "versions.csv": all versions with who registered each, when and why, SHA-256 and entry.
/// @return what was done
/// @throws Failure
std::string Export(History& history, ArchiveTrail& trail, MadeFiles& made);

}  // namespace titration
