#pragma once

#include "trail_archive.h"

namespace tool {

/// Compares the archive's own file of allowed signers, which is next to the last of @p trails, with them.
/// @throws Failure when a trail cannot be read, or is not the one that was checked
void CompareSigners(const std::vector<ReadTrail>& trails, ArchiveReport& report);

/// Adds to each finding about an entry the key that has signed it, and to a changed file whether it is what an earlier
/// entry has recorded. @throws Failure as CompareSigners
void AddSigners(const std::vector<ReadTrail>& trails, ArchiveReport& report);

}  // namespace tool
