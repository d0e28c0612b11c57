#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "qellib10/platform/export.h"

namespace qel {

/// What a trail says about a version of a cabinet. All but the first two are findings.
enum class RecordedState {
    kRecorded,
    kRecovered,    ///< the same; the program was interrupted after the version was there, and the next opening said so
    kChanged,      ///< the content is not what was recorded, or the cabinet is damaged there
    kUnrecorded,   ///< somebody has added the version without an entry
    kInterrupted,  ///< only the start of its registering was recorded, with other content than the cabinet has
    kMissing,      ///< it was recorded and is not in the cabinet
};

/// What is wrong with a version of this state, to follow "version 3: ". Empty for the first two states.
QELLIB10_API std::string_view StateText(RecordedState state);

/// A version of a cabinet, with the first entry that says that it was registered. Texts are UTF-8. Without such an
/// entry they are empty, and the numbers but for `version` and `size` are 0.
struct QELLIB10_API RecordedVersion {
    std::uint64_t version = 0;  ///< from 1
    RecordedState state = RecordedState::kUnrecorded;
    std::string user = {};
    std::int64_t time = 0;  ///< ms since 1970 in UTC
    std::string file = {};  ///< the name that it had
    std::string reason = {};
    std::uint64_t size = 0;   ///< bytes
    std::string sha256 = {};  ///< 64 hexadecimal digits; of kUnrecorded: what the cabinet has, empty if it is damaged
    std::uint64_t entry = 0;  ///< number of the entry
    std::string entryHash = {};

    bool IsFinding() const { return state > RecordedState::kRecovered; }
    bool operator==(const RecordedVersion&) const = default;
};

}  // namespace qel
