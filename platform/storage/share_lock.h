#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "qellib10/platform/storage/descriptor.h"

// Share modes between all openings of a file by programs that use this library, within one process and across
// processes. A new opening is allowed if every existing one shares what it wants to do, and it shares what they do.
//
// Each opening marks what it does and what it denies with open-file-description locks on bytes far past any data:
//
//     0x7FFFFFFFFFF00000   +0        someone reads
//                          +0x10000  someone writes
//                          +0x20000  someone denies reading
//                          +0x30000  someone denies writing
//
// The kernel removes them with the last copy of the descriptor, so a killed process blocks nobody and leaves no lock
// file. flock() guards the time between test and mark. Programs without this library are not affected. On network file
// systems flock() would be a lock on the same bytes: there an opening marks first, then tests, and removes its marks on
// a conflict. A file system without locks has no share modes.
namespace qel {

/// Where the marks start. Locks of callers must be below, or unlocking would remove the marks.
inline constexpr std::int64_t kShareMarksAt = 0x7FFFFFFFFFF00000;

/// What an opening does with a file, and what it denies to others.
struct ShareMode {
    bool read = false;
    bool write = false;
    bool denyRead = false;
    bool denyWrite = false;
};

/// Marks the open file description of @p file. A descriptor that can both read and write is fastest to mark.
/// @param access how the descriptor was opened: O_RDONLY, O_WRONLY or O_RDWR
/// @return false when another opening conflicts; nothing is marked then
bool ClaimShare(int file, int access, const ShareMode& mode);

/// Removes the marks. Closing does that too, but late if a child between fork and exec still has a copy.
void WithdrawShare(int file) noexcept;

/// Keeps others from opening a file while it is deleted or renamed; ends with the object. A link, a folder and a file
/// that cannot be opened are not held.
class ExclusiveHold {
public:
    /// @param name what exceptions call the file
    /// @throws CFileException 32 when the file is open anywhere
    ExclusiveHold(const std::string& posixPath, std::string_view name);
    ~ExclusiveHold();
    ExclusiveHold(const ExclusiveHold&) = delete;
    ExclusiveHold& operator=(const ExclusiveHold&) = delete;

private:
    bool Take(const std::string& posixPath, std::string_view name);  // false: the file was replaced meanwhile
    void LetGo() noexcept;

    Descriptor m_file;
};

}  // namespace qel
