#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "qellib10/platform/restart/restart_queue.h"

// The lines of the queue of delayed operations; RestartQueue describes them.
namespace qel {

struct RestartRecord {
    static constexpr char kWaits = '-';
    static constexpr char kDone = 'x';

    bool done = false;
    std::string bootId;
    RestartOperation operation;

    /// The line, its end included.
    std::string Line() const;

    /// @param line without its end. Nothing for a damaged or foreign line.
    static std::optional<RestartRecord> Parse(std::string_view line);
};

}  // namespace qel
