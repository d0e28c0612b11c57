#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "qellib10/platform/storage/backoff.h"
#include "qellib10/platform/storage/descriptor.h"

namespace qel {

/// A place in the line of everybody who wants something at once, in this process or others, so that whoever comes first
/// gets it first: a program that uses the thing without a pause does not block the others.
///
///     Turn turn(folder, 0);
///     turn.Await(patience);
///     TakeIt();  // by a lock of its own
///
/// The line keeps an order and nothing else. Nobody has to queue, and where the line does not work, as on a file system
/// without locks, everybody goes at once. It consists of locks on a folder, so no file is created: each place is a byte
/// that its holder marks for reading, which needs no right to write. The kernel removes the mark with the last copy of
/// the descriptor; a killed process delays nobody. Whoever can read the folder can lock it or take places, and so delay
/// others by a fifth of a second each time, or until their patience ends if it takes places all the time: make the
/// folder readable only for users who are trusted not to.
class Turn {
public:
    /// Goes to the end of a line.
    /// @param posixFolder the folder whose line it is
    /// @param line which of its lines, from 0 to 255
    Turn(const std::string& posixFolder, int line);

    /// Waits until everybody who came before has gone. It stops waiting when none of them has gone for a tenth of a
    /// second, because a process may have been stopped, and when @p patience ends.
    /// @return whether all have gone
    bool Await(Backoff& patience) const;

private:
    std::optional<std::int64_t> First(std::int64_t from, std::int64_t end) const;
    bool Join(int line);

    Descriptor m_folder;
    std::int64_t m_start = 0;  // of the line: the byte of the first place
    std::int64_t m_place = 0;  // our own byte
};

}  // namespace qel
