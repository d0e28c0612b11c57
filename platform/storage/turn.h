#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "qellib10/platform/storage/backoff.h"
#include "qellib10/platform/storage/descriptor.h"

namespace qel {

/// A place in the line of all who want something at once, in this process or another one, so that whoever comes first
/// is the first to have it: somebody who uses the thing without a pause keeps nobody out.
///
///     Turn turn(folder, 0);
///     turn.Await(patience);
///     TakeIt();  // by a lock of its own
///
/// The line keeps an order and no more. Nobody has to stand in it, and where it cannot be kept, as on a file system
/// without locks, everybody's turn has come. It is made of locks on a folder, so that no file is made: each place is a
/// byte that whoever has it marks for reading, which needs no right to write. The kernel takes the mark away with the
/// last copy of the descriptor; a killed process holds up nobody. Whoever may read the folder can lock it or
/// take places, and so delay others by a fifth of a second each time, and to the end of their patience by taking other
/// places all the time: a folder is to be readable only by those who are trusted not to.
class Turn {
public:
    /// Goes to the end of a line.
    /// @param posixFolder the folder that the line is kept at
    /// @param line which of its lines, from 0 to 255
    Turn(const std::string& posixFolder, int line);

    /// Waits until all who came before have gone; no longer than until none of them has gone for a tenth of a second,
    /// since somebody may have been stopped, nor than @p patience lasts.
    /// @return whether all have gone
    bool Await(Backoff& patience) const;

private:
    std::optional<std::int64_t> First(std::int64_t from, std::int64_t end) const;
    bool Join(int line);

    Descriptor m_folder;
    std::int64_t m_start = 0;  // of the line: the byte of its first place
    std::int64_t m_place = 0;  // the own byte
};

}  // namespace qel
