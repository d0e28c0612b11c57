#pragma once

#include <optional>

#include "qellib10/record/allowed_signers.h"
#include "qellib10/record/stamp_entry.h"
#include "qellib10/record/trail_check.h"
#include "qellib10/record/trail_head.h"

namespace qel {

/// What the files of a trail's anchors say.
struct TrailKnown {
    std::optional<AllowedSigners> allowed;
    std::optional<TrailHeadState> head;
    std::optional<StampAuthorities> authorities;
    std::optional<TimeStamp> stamp;  // of one of the authorities
};

/// Reads them, before the trail: what is appended in between is after the head then.
/// @return false when a file is in a wrong form; LastFailure has its name
/// @throws DataError for anchors in a wrong form; CFileException
bool ReadKnown(const TrailAnchors& anchors, TrailKnown& known);

}  // namespace qel
