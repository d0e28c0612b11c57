#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "qellib10/platform/storage/guarded_file.h"
#include "qellib10/record/stamp_entry.h"
#include "qellib10/record/trail_trust.h"

namespace qel {

/// What shows that entries were there before a key was revoked, besides the trail's own entries.
struct TrailProofs {
    /// Up to this entry each is signed and has the hash of the one before. Later ones show nothing about earlier ones.
    std::uint64_t chainedTo = std::numeric_limits<std::uint64_t>::max();
    std::vector<std::uint64_t> pins = {};  // numbers of entries whose hash is known from elsewhere
    std::optional<TimeStamp> stamp = {};   // one that is kept elsewhere
    std::uint64_t stamped = 0;             // its entry; 0: it is not there
    const StampAuthorities* authorities = nullptr;
};

/// An entry that later ones have made wrong.
struct DoubtfulEntry {
    const ReadLine& line;
    std::uint64_t at = 0;  // in the file
    std::string text;      // a sentence
};

/// Reads the first @p size bytes of a trail two more times: for what shows that entries were there, and for those that
/// nothing shows. @param trust what the whole trail has taught
/// @param take returns whether to go on
/// @throws CFileException
void FindDoubtful(const GuardedFile& file, std::uint64_t size, TrailTrust& trust, const TrailProofs& proofs,
                  const std::function<bool(const DoubtfulEntry&)>& take);

}  // namespace qel
