#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/platform/export.h"
#include "qellib10/platform/storage/descriptor.h"

namespace qel {

/// One move or deletion that waits for the next start of the system. Paths are absolute POSIX paths.
struct RestartOperation {
    std::string source;
    std::string target;  // empty: delete the source
};

/// Moves and deletions that are delayed to the next start, in the order of their requests. They are lines of a text
/// file that the program qel-restart-operations carries out:
///
///     - 1f0d3c5a9e4b7d62 b7c4...-boot-id R /path/from /path/to
///     x 83a6d1b20c9f5e47 b7c4...-boot-id D /path
///     |  |               |               +- R move, replacing; D delete. Letters, digits and /._- as is, others %XX
///     |  |               +- system start in which it was requested ("-": unknown); not carried out in that one
///     |  +- FNV-1a, 64 bits, of everything after the blank that follows; a line with a wrong sum is skipped
///     +- x once carried out
///
/// A line is marked as soon as it is done and on disk. A run that was killed or lost power continues where it was: at
/// most its last step is tried again, and finds that the source is gone. An operation that fails is reported and
/// removed. Any process may add lines while another one runs the queue.
class QELLIB10_API RestartQueue {
public:
    /// The queue of this user. For root it is `pending-moves` in the Windows folder; otherwise the same in
    /// $XDG_STATE_HOME/qellib10 (~/.local/state/qellib10), or in QELLIB10_STATE_DIR.
    static RestartQueue OfUser();

    /// @param posixPath the file, which need not exist; its folder is created when something is added
    explicit RestartQueue(std::string posixPath);

    /// Adds an operation; it is on disk when this returns. Nothing is checked now.
    /// @throws CFileException when the queue cannot be written, 33 when it stays locked for 10 seconds
    void Add(const RestartOperation& operation);

    /// Carries out the operations requested in earlier starts of the system, and keeps the others.
    /// @param report called for each operation that fails, with the system's error number
    /// @throws CFileException when the queue cannot be read or written, or is longer than 64 MiB
    void Run(const std::function<void(const RestartOperation&, int)>& report);

    /// All waiting operations, whenever they were requested.
    std::vector<RestartOperation> Waiting() const;

private:
    std::string m_path;
};

/// At the next start renames @p source to @p target, replacing it, or deletes @p name. Nothing is checked now.
/// @throws CFileException for a bad path or a queue that cannot be written
QELLIB10_API void MoveFileDelayed(std::string_view source, std::string_view target);
QELLIB10_API void DeleteFileDelayed(std::string_view name);

}  // namespace qel
