#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "qellib10/platform/endian.h"
#include "qellib10/platform/error.h"
#include "qellib10/platform/storage/file.h"

// Reads at offsets that the data themselves contain: never past the end, and never allocates more than there is.
namespace qel {

/// The little-endian number at @p at. @throws DataError when it is not within @p bytes
template <PackableNumber T> T NumberAt(std::span<const std::byte> bytes, std::size_t at) {
    if (at > bytes.size() || bytes.size() - at < sizeof(T)) throw DataError("an offset leads out of the data");
    return FromLittleEndian<T>(bytes.subspan(at).first<sizeof(T)>());
}

/// The bytes of a file.
class FileBytes {
public:
    explicit FileBytes(CFile& file) : m_file(file), m_length(file.GetLength()) {}

    /// @throws DataError when they are not all within the file, CFileException when they cannot be read
    std::vector<std::byte> At(std::uint64_t offset, std::uint32_t size) const;

    template <PackableNumber T> T Number(std::uint64_t offset) const { return NumberAt<T>(At(offset, sizeof(T)), 0); }

private:
    CFile& m_file;
    std::uint64_t m_length;
};

}  // namespace qel
