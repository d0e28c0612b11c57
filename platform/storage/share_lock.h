#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "qellib10/platform/storage/descriptor.h"

// Share modes between all openings of a file by programs that use this library, within one process and across
// processes. A new opening is allowed when every existing one shares what it wants to do, and it shares what they do.
//
// Each opening marks what it does and what it denies by open-file-description locks on bytes far behind any data:
//
//     0x7FFFFFFFFFF00000   +0        someone reads
//                          +0x10000  someone writes
//                          +0x20000  someone denies reading
//                          +0x30000  someone denies writing
//
// The kernel drops them with the last copy of the descriptor, so a killed process holds nothing back and no lock file
// is left. Between test and mark stands flock() as a guard. Programs without this library are not held back. On network
// file systems the guard would be a lock on the same bytes: there an opening marks first, tests then, and withdraws on
// conflict. A file system without locks knows no share modes.
namespace qel {

/// Where the marks begin. Locks of callers stay below, or unlocking would take the marks back.
inline constexpr std::int64_t kShareMarksAt = 0x7FFFFFFFFFF00000;

/// What an opening does with a file, and what it lets no other do meanwhile.
struct ShareMode {
    bool read = false;
    bool write = false;
    bool denyRead = false;
    bool denyWrite = false;
};

/// Marks the description of @p file. A descriptor that can both read and write is marked fastest.
/// @param access what the descriptor was opened with: O_RDONLY, O_WRONLY or O_RDWR
/// @return false when another opening is in the way; nothing is marked then
bool ClaimShare(int file, int access, const ShareMode& mode);

/// Takes the marks back. Closing does that too, yet late when a child between fork and exec still holds a copy.
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
