#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "qellib10/platform/export.h"
#include "qellib10/platform/failure.h"

namespace qel {

/// What an application reports to its trail. Texts are UTF-8; those that do not apply stay empty.
struct QELLIB10_API TrailRecord {
    std::string user = {};             ///< who
    std::string action = {};           ///< what: one of trail_kind, or a kind of the application's own
    std::string object = {};           ///< of what, such as a method or a file
    std::string before = {};           ///< what it was
    std::string after = {};            ///< what it is now
    std::string reason = {};           ///< why; must be there where something that exists is changed
    std::string cabinet = {};          ///< GUID of the cabinet, as CGuid::GetString writes it
    std::uint64_t cabinetVersion = 0;  ///< from 1; 0 for none
    std::uint64_t size = 0;            ///< bytes of the version or file
    std::string sha256 = {};           ///< of the same, 64 lower-case hexadecimal digits
    std::string statement = {};        ///< what a person has signed, or an authority's stamp in Base64

    bool operator==(const TrailRecord&) const = default;
};

/// One entry of a trail: the record, and what the trail adds.
struct QELLIB10_API TrailEntry : TrailRecord {
    std::string trailId = {};                ///< 32 random hexadecimal digits
    std::uint64_t number = 0;                ///< from 1
    std::int64_t time = 0;                   ///< ms since 1970 in UTC; never before that of the entry before
    std::optional<std::int64_t> clock = {};  ///< what the clock said where that is before `time`
    std::string bootId = {};                 ///< a random one for each start of the system
    std::uint64_t bootTime = 0;              ///< ms since the system was started
    std::string host = {};
    std::string application = {};
    std::string version = {};   ///< of the application
    std::string previous = {};  ///< SHA-256 of the line before, zeros in the first

    bool operator==(const TrailEntry&) const = default;
};

/// "2026-11-27T03:22:25.123Z". @param time ms since 1970, up to the year 9999
QELLIB10_API std::string TrailTimeText(std::int64_t time);

}  // namespace qel
