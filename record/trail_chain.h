#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "qellib10/record/trail.h"
#include "qellib10/record/trail_file.h"

namespace qel {

/// Makes sure that the lines which are read are those that somebody has checked before, though the file may have been
/// exchanged in between. Each has the hash of the one before, so the last one's hash is that of all.
class TrailChain {
public:
    /// @param last the last line that was checked; with number 0 every line is taken as it is, to the end
    explicit TrailChain(TrailReceipt last) : m_last(std::move(last)), m_hash(64, '0') {}

    /// Whether the last line was there. Later ones are not known to anybody.
    bool IsAtEnd() const noexcept { return m_last.number > 0 && m_number == m_last.number; }
    /// The next line, without its line feed. @throws DataError when it is not the one that was checked
    void Add(std::string_view line);
    /// @throws DataError when lines are missing
    void RequireEnd() const;

private:
    TrailReceipt m_last;
    std::string m_hash;
    std::uint64_t m_number = 0;
};

/// Gives the whole lines of a trail to @p take, up to the last one that was checked. A torn end is CheckTrail's matter:
/// nothing in it was acknowledged.
/// @param path in the library's form
/// @return what ended it: kWhole after the last one that was checked, or what is there in place of a whole line
/// @throws DataError as TrailChain; CFileException
TrailLines::Kind ReadChecked(std::string_view path, const TrailReceipt& last,
                             const std::function<void(std::string_view line)>& take);

}  // namespace qel
