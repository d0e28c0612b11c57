#pragma once

#include <functional>
#include <vector>

#include "demo/attack/copied_archive.h"

namespace titration {

/// What somebody who verifies has from outside the archive.
enum class Known {
    kHead,     ///< the head file
    kKey,      ///< the installation's key, and the trail's ID as reports print it
    kNothing,  ///< nothing: then some attacks cannot be seen
};

struct Attack {
    const char* what;
    Known known;
    const char* finding;  ///< a part of what the verification has to say; with kNothing of its summary
    std::function<void(const CopiedArchive& archive)> run;
};

/// All attacks, on an archive with a version that is reviewed, approved and printed.
std::vector<Attack> Attacks();

}  // namespace titration
