#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "qellib10/platform/storage/guarded_file.h"
#include "qellib10/record/trail_line.h"

namespace qel {

/// Goes through the lines of a trail's file in blocks: a trail of any size takes the same memory, and a file without
/// line ends, such as a sparse one of gigabytes, ends at the first 64 KiB.
class TrailLines {
public:
    enum class Kind { kEnd, kWhole, kPart, kTooLong };  ///< kPart: the file ends before its line feed
    struct Line {
        Kind kind = Kind::kEnd;
        std::uint64_t at = 0;   // where it starts in the file
        std::string_view text;  // without its line feed; until the next call

        std::uint64_t End() const { return at + text.size() + (kind == Kind::kWhole ? 1 : 0); }
    };

    /// @param end where to end: what is written after that is not read
    TrailLines(const GuardedFile& file, std::uint64_t from, std::uint64_t end)
        : m_file(file), m_at(from), m_readTo(from), m_end(end) {}

    /// The next line. After one that is too long there are none.
    /// @throws CFileException
    Line Next();

private:
    bool ReadMore();

    const GuardedFile& m_file;
    std::uint64_t m_at;      // start of the next line
    std::uint64_t m_readTo;  // the file's position after what is in m_bytes
    std::uint64_t m_end;
    std::string m_bytes;
    std::size_t m_start = 0;  // of the next line in m_bytes
};

/// The whole line that ends at @p end, without its line feed.
/// @throws DataError when there is none; CFileException
std::string LineBefore(const GuardedFile& file, std::uint64_t end);

/// A file next to a trail that is short: a list of keys, a certificate, a stamp.
/// @throws DataError with @p refusal when it has more than @p most bytes; CFileException
std::string ReadShortFile(const std::string& path, std::uint64_t most, const char* refusal);

}  // namespace qel
