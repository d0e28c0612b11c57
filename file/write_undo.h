#pragma once

#include <cstddef>
#include <vector>

#include "qellib10/platform/storage/file.h"

namespace qel {

/// Puts a file back, when the object goes, to the length and the bytes that it had. With Keep() it stays as written.
/// A file that is open for writing alone gets its length back.
class WriteUndo {
public:
    /// For writing from @p position on, the file's end or before it, over @p most bytes of what is there. The
    /// file's position is there then.
    /// @throws CFileException when the bytes cannot be read, or the file has no length or position
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
