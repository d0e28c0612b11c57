#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/storage/descriptor.h"

// Reads and writes whole pieces; interrupted and partial calls are handled here. @p name is what exceptions call the
// file.
namespace qel {

/// A block for bulk reading. It starts on a page: reads into a block that does not took up to 4.5 times as long.
struct alignas(4096) IoBlock {
    static constexpr std::size_t kSize = 256 * 1024;
    std::byte bytes[kSize];
};

/// An IoBlock whose bytes are not initialized.
inline std::unique_ptr<IoBlock> MakeIoBlock() { return std::make_unique_for_overwrite<IoBlock>(); }

/// Fills @p bytes from the current position. @return bytes read, fewer than asked only at the end of the file
QELLIB10_API std::size_t ReadFully(const Descriptor& file, std::span<std::byte> bytes, std::string_view name);
/// The same from @p offset; the position does not change.
QELLIB10_API std::size_t ReadFullyAt(const Descriptor& file, std::span<std::byte> bytes, std::uint64_t offset,
                                     std::string_view name);

/// Writes all bytes at the current position, or at @p offset, which leaves the position unchanged.
QELLIB10_API void WriteFully(const Descriptor& file, std::span<const std::byte> bytes, std::string_view name);
/// @param written grows by the number of bytes written, also when it throws
QELLIB10_API void WriteFully(const Descriptor& file, std::span<const std::byte> bytes, std::string_view name,
                             std::uint64_t& written);
QELLIB10_API void WriteFullyAt(const Descriptor& file, std::span<const std::byte> bytes, std::uint64_t offset,
                               std::string_view name);

/// Removes the @p count bytes before the current position, which are the last in the file: the file is shortened by
/// them, if the system allows it.
void CutBack(const Descriptor& file, std::uint64_t count) noexcept;

/// Copies @p count bytes between two files without moving their positions. Shares the blocks if the file system can, or
/// lets the kernel copy if it can, else reads and writes.
/// @return bytes copied, fewer than @p count only at the end of @p from
QELLIB10_API std::uint64_t CopyBytes(const Descriptor& from, std::uint64_t fromOffset, const Descriptor& to,
                                     std::uint64_t toOffset, std::uint64_t count, std::string_view fromName,
                                     std::string_view toName);

/// Returns when the data of @p file are on disk.
QELLIB10_API void FlushData(const Descriptor& file, std::string_view name);

/// Returns when the names in the folder of @p posixPath are on disk. It is not an error if a file system cannot do
/// that.
QELLIB10_API void FlushFolderOf(const std::string& posixPath, std::string_view name);

}  // namespace qel
