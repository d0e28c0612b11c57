#pragma once

#include <array>
#include <cstddef>

#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/file.h"

namespace qel {

/// @p kSize bytes at @p offset of an open file, whose position does not change.
/// @throws CFileException; with endOfFile if the file ends before them
template <std::size_t kSize> std::array<std::byte, kSize> BytesAt(const CFile& file, ULONGLONG offset) {
    const CString name = file.GetFilePath();
    std::array<std::byte, kSize> bytes;
    if (ReadFullyAt(file.ReadableDescriptor(), bytes, offset, name.View()) != kSize)
        throw CFileException(CFileException::endOfFile, -1, name);
    return bytes;
}

}  // namespace qel
