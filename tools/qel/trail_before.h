#pragma once

#include <optional>
#include <string>
#include <vector>

#include "trail_report.h"

// Trails that go on from one file to the next.
namespace tool {

/// How a trail says which one it continues, in its first entry.
struct TrailBefore {
    std::string trail;  ///< its ID
    std::uint64_t entry = 0;
    std::string sha256;  ///< of its last line
};

/// What a trail's first line says, without checking it; nothing for a file that is no trail.
struct TrailStart {
    std::string trail;
    std::optional<TrailBefore> before;
};
std::optional<TrailStart> StartOf(const std::string& file);

/// Checks a trail, and those that it continues, which are looked for in its folder and among @p given. They have the
/// anchors that hold for every trail, and have to end with the entry that the next one names.
/// @throws Failure when the trail itself cannot be read
VerifiedChain VerifyChain(const std::string& trail, const std::vector<std::string>& given, const AnchorOptions& anchors,
                          const SignatureOptions& signatures);

}  // namespace tool
