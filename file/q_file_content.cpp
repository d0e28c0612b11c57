#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <span>

#include "qellib10/file/crc32_bzip2.h"
#include "qellib10/file/file_check_sums.h"
#include "qellib10/file/find_bytes.h"
#include "qellib10/file/q_file.h"
#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/storage/block_io.h"

namespace {

using qel::FailureKind;
using qel::IoBlock;
using qel::Refuse;
using ByteSpan = std::span<const std::byte>;

constexpr UINT kForReading = CFile::modeRead | CFile::shareDenyNone;

// The bytes of a file from its start, block by block. Before each new block, which starts on a page, is the end of the
// bytes read before it.
class Window {
public:
    // @param overlap bytes to keep: one less than the length searched for
    Window(CFile& file, std::size_t overlap)
        : m_file(file), m_overlap(overlap), m_fresh((overlap + IoBlock::kSize - 1) / IoBlock::kSize) {
        // At least as large as the part that is kept: so no byte is searched more than twice.
        m_freshSize = std::max<std::size_t>(m_fresh, 1) * IoBlock::kSize;
        m_blocks = std::make_unique_for_overwrite<IoBlock[]>(m_fresh + m_freshSize / IoBlock::kSize);
        m_begin = m_blocks[m_fresh].bytes;
        file.SeekToBegin();
    }

    // @return false at the end of the file; Bytes() is then its last ones, those that were kept
    bool Next() {
        std::byte* const fresh = m_blocks[m_fresh].bytes;
        const std::size_t kept = std::min(m_size, m_overlap);
        std::memmove(fresh - kept, m_begin + (m_size - kept), kept);
        const UINT got = m_file.Read(fresh, static_cast<UINT>(std::min<std::size_t>(m_freshSize, 1 << 30)));
        m_offset += m_size - kept;
        m_begin = fresh - kept;
        m_size = kept + got;
        return got != 0;
    }
    ByteSpan Bytes() const { return {m_begin, m_size}; }
    ULONGLONG Offset() const { return m_offset; }  // of the first of them in the file

private:
    CFile& m_file;
    std::size_t m_overlap;
    std::size_t m_fresh;  // the block into which is read
    std::size_t m_freshSize;
    std::unique_ptr<IoBlock[]> m_blocks;
    std::byte* m_begin;
    std::size_t m_size = 0;
    ULONGLONG m_offset = 0;
};

// The search goes through the file in blocks of 1024 bytes. The last one, if it is not full, still has bytes of the
// previous block after its own. If the pattern's first byte is among them, it ends the search, like one near the end
// does.
// @return the position past the end of a file of @p length bytes, 0 if there is none
ULONGLONG FindAfterEnd(CFile& file, ULONGLONG length, std::byte first) {
    constexpr ULONGLONG kBlock = 1024;
    const ULONGLONG ownOfLast = length % kBlock;
    if (length < kBlock || ownOfLast == 0) return 0;
    std::array<std::byte, kBlock> bytes;
    file.Seek(static_cast<LONGLONG>(length - kBlock), CFile::begin);
    const UINT got = file.Read(bytes.data(), static_cast<UINT>(kBlock - ownOfLast));
    const std::size_t at = qel::FindBytes({bytes.data(), got}, {&first, 1});
    return at != qel::kNotFound ? length + at : 0;
}

int FindIn(CFile& file, ByteSpan pattern) {
    const ULONGLONG position = file.GetPosition();
    Window window(file, std::min<ULONGLONG>(pattern.size() - 1, file.GetLength()));
    while (window.Next()) {
        const std::size_t at = qel::FindBytes(window.Bytes(), pattern);
        if (at == qel::kNotFound) continue;
        file.Seek(static_cast<LONGLONG>(window.Offset() + at + pattern.size()), CFile::begin);
        return 1;
    }
    const ULONGLONG length = window.Offset() + window.Bytes().size();
    ULONGLONG end = length;
    if (qel::FindBytes(window.Bytes(), pattern.first(1)) == qel::kNotFound) {
        end = FindAfterEnd(file, length, pattern[0]);
        if (end == 0) end = position;
    }
    file.Seek(static_cast<LONGLONG>(end), CFile::begin);
    return Refuse(FailureKind::kMissing, file.GetFilePath().View(), "not found in the file");
}

bool HaveSameBytes(CFile& a, CFile& b) {
    if (a.GetLength() != b.GetLength()) return false;
    const auto blocks = std::make_unique_for_overwrite<IoBlock[]>(2);
    for (;;) {
        const UINT gotA = a.Read(blocks[0].bytes, IoBlock::kSize);
        const UINT gotB = b.Read(blocks[1].bytes, IoBlock::kSize);
        if (gotA != gotB || std::memcmp(blocks[0].bytes, blocks[1].bytes, gotA) != 0) return false;
        if (gotA == 0) return true;
    }
}

}  // namespace

const DWORD* CQFile::MakeCRCTable() {
    static const std::array<DWORD, 256> table = [] {
        std::array<DWORD, 256> entries = {};
        for (unsigned i = 0; i < 256; ++i) {
            const auto byte = static_cast<unsigned char>(i);
            entries[i] = qel::CrcByByte(0, {&byte, 1});
        }
        return entries;
    }();
    return table.data();
}

int CQFile::GetFileCRC(DWORD* crc, DWORD size) {
    if (crc == nullptr) return qel::RefuseNull("CQFile::GetFileCRC");
    return qel::Succeeds("CQFile::GetFileCRC",
                         [&] { *crc = qel::CheckSumsOf(*this, size, qel::CheckSums::kCrc).Crc(); });
}

int CQFile::GetFileSum(DWORD* sum, DWORD size) {
    if (sum == nullptr) return qel::RefuseNull("CQFile::GetFileSum");
    return qel::Succeeds("CQFile::GetFileSum",
                         [&] { *sum = qel::CheckSumsOf(*this, size, qel::CheckSums::kSum).Sum(); });
}

int CQFile::GetFileCRC(const char* name, DWORD* crc, DWORD size) {
    qel::Operation operation("CQFile::GetFileCRC");
    CQFile file;
    return operation.Ended(file.Open(name, kForReading) ? file.GetFileCRC(crc, size) : 0);
}

int CQFile::GetFileSum(const char* name, DWORD* sum, DWORD size) {
    qel::Operation operation("CQFile::GetFileSum");
    CQFile file;
    return operation.Ended(file.Open(name, kForReading) ? file.GetFileSum(sum, size) : 0);
}

int CQFile::Find(const void* pattern, DWORD length) {
    return qel::AsResult("CQFile::Find", [&] {
        if (pattern == nullptr || length == 0) return Refuse(FailureKind::kArgument, "", "an empty pattern");
        return FindIn(*this, {static_cast<const std::byte*>(pattern), length});
    });
}

int CQFile::CompareFile(const char* a, const char* b) {
    return qel::AsResult("CQFile::CompareFile", [&] {
        CFile first(a, kForReading);
        CFile second(b, kForReading);
        return HaveSameBytes(first, second) ? 1 : Refuse(FailureKind::kData, CString(b).View(), "other bytes");
    });
}
