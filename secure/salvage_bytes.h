#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>

#include "qellib10/file/check_sums.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/file.h"
#include "qellib10/secure/history_cabinet_file.h"

namespace qel {

/// The bytes of a damaged file. What the disk refuses is given as zeros: checksums then say whether it matters.
class SalvageBytes {
public:
    explicit SalvageBytes(const CFile& file);

    ULONGLONG Length() const noexcept { return m_length; }
    ULONGLONG Unreadable() const noexcept { return m_unreadable; }

    /// @return bytes read, fewer than asked only at the end of the file
    std::size_t Read(std::span<std::byte> bytes, ULONGLONG offset);
    /// A version's header there, whatever its tag is; zeros after the end of the file.
    _CAB_VERSIONHEADER HeaderAt(ULONGLONG offset);
    /// Calls @p take with the bytes in blocks.
    template <class Take> void ForEachBlock(ULONGLONG offset, ULONGLONG count, Take&& take) {
        while (count > 0) {
            const std::span<std::byte> wanted(m_block->bytes, std::min<ULONGLONG>(count, IoBlock::kSize));
            const std::size_t got = Read(wanted, offset);
            if (got == 0) return;
            take(std::span<const std::byte>(wanted.first(got)));
            offset += got;
            count -= got;
        }
    }
    /// Whether the data there match the header's checksums.
    bool Match(const _CAB_VERSIONHEADER& header, ULONGLONG dataAt, ULONGLONG size);

private:
    std::size_t ReadInPieces(std::span<std::byte> bytes, ULONGLONG offset);

    const CFile& m_file;
    std::string m_name;
    ULONGLONG m_length;
    ULONGLONG m_unreadable = 0;
    std::unique_ptr<IoBlock> m_block;
};

void AddTo(CheckSums& sums, std::span<const std::byte> bytes) noexcept;
bool Match(const CheckSums& sums, const _CAB_VERSIONHEADER& header) noexcept;
bool HasTag(const _CAB_VERSIONHEADER& header) noexcept;

}  // namespace qel
