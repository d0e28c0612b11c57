#pragma once

#include <chrono>
#include <string>

#include "qellib10/platform/export.h"

namespace qel {

/// When an entry counts as acknowledged: from then on no power cut takes it away.
enum class TrailFlush {
    kEach,    ///< when Append returns; each one flushes
    kGroup,   ///< the same; one flush serves all threads of an object that append at once
    kCaller,  ///< when Trail::Flush returns; Append flushes by itself where 4 MiB would wait for that
};

/// Where a trail is, and who writes it. Paths are in the library's form, texts UTF-8.
struct QELLIB10_API TrailSettings {
    std::string path = {};         ///< the trail's file, in the archive's folder
    std::string headPath = {};     ///< the head file: outside the archive, where only the installation may write
    std::string application = {};  ///< for each entry
    std::string version = {};
    std::string continues = {};          ///< a new trail goes on from the one in this file; empty: it does not
    std::string continuesHeadPath = {};  ///< the head file of that one, which shows that its end is whole
    TrailFlush flush = TrailFlush::kEach;
    std::chrono::milliseconds patience = std::chrono::seconds(30);  ///< how long to wait while others append
};

}  // namespace qel
