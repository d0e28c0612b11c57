#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "qellib10/platform/storage/guarded_file.h"
#include "qellib10/record/trail.h"
#include "qellib10/record/trail_entry.h"

namespace qel {

/// Goes through the lines of a trail's file from its end to its start, in blocks: the last entry about something is
/// near the end, and a trail is long. Everything throws CFileException.
class LinesBackwards {
public:
    /// @param file must outlive this object
    /// @param end where to start: what is written after that is not read
    LinesBackwards(const GuardedFile& file, std::uint64_t end) : m_file(file), m_from(end) {}

    /// The line before, without its line feed, until the next call; at first perhaps a part of one.
    /// @throws DataError for one longer than 64 KiB
    std::optional<std::string_view> Next();
    /// Whether that one has a line feed, and where it ends in the file.
    bool IsWhole() const noexcept { return m_isWhole; }
    std::uint64_t End() const noexcept { return m_lineEnd; }

private:
    void ReadMore();

    const GuardedFile& m_file;
    bool m_isWhole = false;
    std::uint64_t m_lineEnd = 0;
    std::uint64_t m_from;  // where m_bytes starts in the file
    std::string m_bytes;   // up to m_end not given yet
    std::size_t m_end = 0;
};

/// Goes through the entries of a trail from an acknowledged one back. Each has to have the hash that the one after it
/// names, so all that it gives was in the trail when that one was acknowledged.
class TrailBackwards {
public:
    TrailBackwards(const std::string& path, const TrailReceipt& last);

    /// Nothing before the first entry.
    /// @throws DataError where the trail is not what was acknowledged; CFileException
    std::optional<TrailEntry> Next();

private:
    std::optional<std::string_view> NextWithHash();

    GuardedFile m_file;
    LinesBackwards m_lines;
    TrailReceipt m_next;
    bool m_hasStarted = false;
};

}  // namespace qel
