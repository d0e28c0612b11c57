#include "qellib10/secure/salvage_bytes.h"

#include <algorithm>
#include <array>

#include "qellib10/platform/storage/file_exception.h"

#include "qellib10/secure/history_cabinet_format.h"

namespace qel {

void AddTo(CheckSums& sums, std::span<const std::byte> bytes) noexcept {
    sums.Add({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
}

bool Match(const CheckSums& sums, const _CAB_VERSIONHEADER& header) noexcept {
    return sums.Sum() == header.dataSum && sums.Crc() == header.dataCRC;
}

bool HasTag(const _CAB_VERSIONHEADER& header) noexcept { return header.magic == kVersionMagic; }

SalvageBytes::SalvageBytes(const CFile& file)
    : m_file(file), m_name(file.GetFilePath().View()), m_length(file.GetLength()), m_block(MakeIoBlock()) {}

std::size_t SalvageBytes::Read(std::span<std::byte> bytes, ULONGLONG offset) {
    if (offset >= m_length) return 0;
    bytes = bytes.first(static_cast<std::size_t>(std::min<ULONGLONG>(bytes.size(), m_length - offset)));
    try {
        return ReadFullyAt(m_file.ReadableDescriptor(), bytes, offset, m_name);
    } catch (const CFileException&) {  // a bad sector
        return ReadInPieces(bytes, offset);
    }
}

std::size_t SalvageBytes::ReadInPieces(std::span<std::byte> bytes, ULONGLONG offset) {
    constexpr std::size_t kPiece = 4096;
    for (std::size_t at = 0; at < bytes.size(); at += kPiece) {
        const std::span<std::byte> piece = bytes.subspan(at, std::min(kPiece, bytes.size() - at));
        std::size_t got = 0;
        try {
            got = ReadFullyAt(m_file.ReadableDescriptor(), piece, offset + at, m_name);
        } catch (const CFileException&) {
            m_unreadable += piece.size();
        }
        std::ranges::fill(piece.subspan(got), std::byte{0});
    }
    return bytes.size();
}

_CAB_VERSIONHEADER SalvageBytes::HeaderAt(ULONGLONG offset) {
    std::array<std::byte, kVersionHeaderSize> bytes = {};
    Read(bytes, offset);
    return UnpackDamagedVersion(bytes);
}

bool SalvageBytes::Match(const _CAB_VERSIONHEADER& header, ULONGLONG dataAt, ULONGLONG size) {
    CheckSums sums;
    ForEachBlock(dataAt, size, [&](std::span<const std::byte> bytes) { AddTo(sums, bytes); });
    return qel::Match(sums, header);
}

}  // namespace qel
