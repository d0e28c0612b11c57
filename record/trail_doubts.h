#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "qellib10/platform/crypto/digest.h"
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

/// What a trail was when it was read first: somebody may exchange the file before it is read again.
struct TrailState {
    std::uint64_t size = 0;   // so many bytes were read
    Sha256Digest lines = {};  // SHA-256 of the SHA-256 of each whole line, also of wrong ones
};

/// Reads a trail two more times: for what shows that entries were there, and for those that nothing shows.
/// @param state what the first reading has seen; @param trust what it has taught
/// @param take returns whether to go on
/// @throws DataError when the trail is not what it was then, perhaps after some calls of @p take; CFileException
void FindDoubtful(const GuardedFile& file, const TrailState& state, TrailTrust& trust, const TrailProofs& proofs,
                  const std::function<bool(const DoubtfulEntry&)>& take);

}  // namespace qel
