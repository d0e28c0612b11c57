#pragma once

#include <cstddef>
#include <vector>

#include "qellib10/platform/storage/file.h"

namespace qel {

/// Its destructor restores the length and the bytes that a file had, unless Keep() was called. For a file that is open
/// for writing only, just the length is restored.
class WriteUndo {
public:
    /// For writing from @p position on (the end of the file or before it) over at most @p most existing bytes. Moves
    /// the file's position there.
    /// @throws CFileException if the bytes cannot be read, or the file has no length or position
    WriteUndo(CFile& file, ULONGLONG position, std::size_t most = 0);
    ~WriteUndo();
    WriteUndo(const WriteUndo&) = delete;
    WriteUndo& operator=(const WriteUndo&) = delete;

    void Keep() { m_kept = true; }

private:
    std::size_t ReadIfOpenForIt();

    CFile& m_file;
    ULONGLONG m_position;
    ULONGLONG m_length;
    std::vector<std::byte> m_bytes;
    bool m_kept = false;
};

}  // namespace qel
