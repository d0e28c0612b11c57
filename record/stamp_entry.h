#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "qellib10/platform/crypto/time_stamp.h"
#include "qellib10/platform/storage/guarded_file.h"
#include "qellib10/record/time_stamp.h"
#include "qellib10/record/trail_entry.h"

// Time stamps in the entries of a trail. Everything throws DataError with a sentence.
namespace qel {

/// Certificates of a file, and an answer in one. @throws CFileException too
StampAuthorities ReadAuthorities(const std::string& path);
StampAnswer ReadStampFile(const std::string& path);

TimeStamp ContentOf(const StampAnswer& answer);

/// When an entry was written by its clock: its time may be later, since times never go back.
std::int64_t ClockOf(const TrailEntry& entry);

/// Requires that a stamp is not older than what it stamps.
void RequireAfter(const TimeStamp& stamp, const TrailEntry& stamped);

/// Requires that a stamp is not younger than its entry, which is written when the clock says @p clock.
void RequireBefore(const TimeStamp& stamp, std::int64_t clock);

/// The entry that a stamp's entry is to have, without what the trail adds.
/// @param length bytes of the trail with the entry @p stamped
TrailRecord StampRecord(const TrailEntry& stamped, std::uint64_t length, std::string_view answer);

/// What an entry of the kind trail_kind::kTimeStamp proves.
struct StampedEntry {
    std::uint64_t number = 0;  // this entry and all before were there
    TimeStamp stamp;
};

/// Checks an entry of that kind: the entry that it names, hash and time, and, with @p authorities, the signature.
/// @param at where its line starts in @p trail
StampedEntry CheckStampEntry(const GuardedFile& trail, const TrailEntry& entry, std::uint64_t at,
                             const StampAuthorities* authorities);

}  // namespace qel
