#pragma once

#include <string>

#include <qellib10/record.h>

#include "tool.h"

namespace tool {

/// What is known about a trail from elsewhere, as options of the command line.
struct AnchorOptions {
    std::string trust, key, trail, head, headFile, tsaCa, stamp;
    std::uint64_t atLeast = 0;

    bool AreThere() const { return AreOfOneTrail() || !trust.empty() || !key.empty() || !tsaCa.empty(); }
    /// Whether it is known who may sign, also by the installation's own file.
    bool HasTrust() const;
    /// Whether some of them belong to one trail, and not to every trail of an installation.
    bool AreOfOneTrail() const {
        return !trail.empty() || !head.empty() || !headFile.empty() || !stamp.empty() || atLeast > 0;
    }
    /// Those that hold for every trail.
    AnchorOptions OfEveryTrail() const { return {trust, key, {}, {}, {}, tsaCa, {}, 0}; }
};

void AddAnchors(CLI::App& command, AnchorOptions& options);

/// Why the library's last operation on a trail failed; it may be about one of the files that the options name.
Failure TrailRefusal(const std::string& trail, const AnchorOptions& options);

/// Checks a trail from start to end. @throws Failure when it cannot be read
qel::TrailReport CheckedTrail(const std::string& trail, const AnchorOptions& options);

}  // namespace tool
