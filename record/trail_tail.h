#pragma once

#include <cstdint>
#include <string>

#include "qellib10/record/trail_entry.h"
#include "qellib10/record/trail_head.h"

// What an interrupted writer has left after the last entry: bytes that are no entry. They are kept in a file next to
// the trail before they are cut off.
namespace qel {

inline constexpr std::uint64_t kLongestTail = 4 << 20;  // bytes; more is no interrupted writer

/// The file that gets the bytes torn before the entry @p number, the @p count-th time.
std::string TailName(const std::string& path, std::uint64_t number, std::uint32_t count);
/// Refuses a path so long that no such file could be made. @throws DataError, CFileException
void RequirePlaceForTails(const std::string& path);

/// The bytes after the last entry. @throws DataError if they are too many
std::string ReadTail(const GuardedFile& trail, const TrailHeadState& head, std::uint64_t size);
/// Copies them to a file, flushes it, and notes it in @p head, which is not stored yet. Without effect for bytes that
/// the head already knows.
/// @return whether @p head has changed
bool KeepTail(const std::string& path, TrailHeadState& head, std::string_view tail);

/// The entry that reports the tails set aside since the last entry.
TrailRecord TailReport(const std::string& path, const TrailHeadState& head);

}  // namespace qel
