#pragma once

#include <functional>
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

/// Nothing where a trail continues none.
std::optional<TrailBefore> BeforeOf(const qel::TrailReport& report);
/// Whether it is the trail before, and ends with that entry.
bool EndsWith(const qel::TrailReport& report, const TrailBefore& before);

/// Checks one trail alone. @throws Failure when it cannot be read
VerifiedTrail VerifyTrail(const std::string& file, const AnchorOptions& anchors, const SignatureOptions& signatures);
/// The same for one that another one continues: it has to have that entry. A failure is in the result.
VerifiedTrail VerifyBefore(const std::string& file, const TrailBefore& before, const AnchorOptions& anchors,
                           const SignatureOptions& signatures);

/// Looks for such a trail in the folder of the later one and among @p given: the one that ends with the entry, or any.
std::optional<VerifiedTrail> FindNextTo(const std::string& later, const TrailBefore& before,
                                        const std::vector<std::string>& given, const AnchorOptions& anchors,
                                        const SignatureOptions& signatures);

/// Finds and checks a trail that @p later continues; nothing: it is not there.
using FindOlder = std::function<std::optional<VerifiedTrail>(const std::string& later, const TrailBefore& before)>;
/// Adds to a chain what its first trail continues, and so on. Each is as certain as the one that names it.
void AddOlder(VerifiedChain& chain, const FindOlder& find);

/// Checks a trail, and those that it continues, which are looked for in its folder and among @p given. They have the
/// anchors that hold for every trail, and have to end with the entry that the next one names.
/// @throws Failure when the trail itself cannot be read
VerifiedChain VerifyChain(const std::string& trail, const std::vector<std::string>& given, const AnchorOptions& anchors,
                          const SignatureOptions& signatures);

}  // namespace tool
