#include "qellib10/file/q_csv_file.h"

#include <cstring>
#include <span>
#include <utility>

#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/text/own_strings.h"
#include "qellib10/resource/string_ids.h"

struct CQCSVFile::Block {
    static constexpr std::size_t kSize = 64 * 1024;
    std::size_t used = 0;
    char bytes[kSize];
};

namespace {

CString OwnText(UINT id) { return qel::LookUpOwnString(id).value_or(CString()); }

std::string_view TextOf(const char* text) { return text != nullptr ? std::string_view(text) : std::string_view(); }

}  // namespace

CQCSVFile::CQCSVFile()
    : m_szDelimiter(OwnText(qel::kCsvDelimiterId)),
      m_szCRLF(OwnText(qel::kCsvLineEndId)),
      m_szQuotationMark(OwnText(qel::kCsvQuotationMarkId)),
      m_pBlock(std::make_unique_for_overwrite<Block>()) {}

CQCSVFile::~CQCSVFile() { WriteOutQuietly(); }

void CQCSVFile::Write(const char* text) { Put({TextOf(text)}); }
void CQCSVFile::WriteDelimiter() { Put({m_szDelimiter.View()}); }
void CQCSVFile::WriteCRLF() { Put({m_szCRLF.View()}); }

void CQCSVFile::WriteCSVString(const char* text) {
    const std::string_view mark = m_szQuotationMark.View();
    // No byte below 0x40 is half of a double-byte character.
    if (mark.size() == 1 && mark[0] > 0 && mark[0] < 0x40 && m_pBlock->used != 0 && QuoteInBlock(text, mark[0])) return;
    const std::string_view field = TextOf(text);
    if (mark.empty() || field.find(mark) == std::string_view::npos) return Put({mark, field, mark});
    CString doubled(field);
    doubled.Replace(m_szQuotationMark, m_szQuotationMark + m_szQuotationMark);
    Put({mark, doubled.View(), mark});
}

// Most fields are short and are written to the block byte by byte.
// @return false, and nothing is written, if the field does not fit in the block
bool CQCSVFile::QuoteInBlock(const char* text, char mark) {
    constexpr std::size_t kLongest = 64;
    if (text == nullptr || Block::kSize - m_pBlock->used < 2 * kLongest + 2) return false;
    char* out = m_pBlock->bytes + m_pBlock->used;
    *out++ = mark;
    for (std::size_t i = 0; text[i] != '\0'; ++i) {
        if (i == kLongest) return false;
        *out++ = text[i];
        if (text[i] == mark) *out++ = mark;
    }
    *out++ = mark;
    m_pBlock->used = static_cast<std::size_t>(out - m_pBlock->bytes);
    return true;
}

void CQCSVFile::Write(const void* buffer, UINT count) { Put({{static_cast<const char*>(buffer), count}}); }

void CQCSVFile::Put(std::initializer_list<std::string_view> pieces) {
    if (m_pBlock->used == 0) WritableDescriptor();  // refuses a closed or read-only file at once
    for (std::string_view piece : pieces) {
        if (piece.empty()) continue;
        if (piece.size() > Block::kSize - m_pBlock->used) WriteOut();
        if (piece.size() > Block::kSize) {
            WriteThrough(piece);
            continue;
        }
        if (piece.size() == 1) {
            m_pBlock->bytes[m_pBlock->used++] = piece[0];
            continue;
        }
        std::memcpy(m_pBlock->bytes + m_pBlock->used, piece.data(), piece.size());
        m_pBlock->used += piece.size();
    }
}

void CQCSVFile::WriteOut() const {
    // Bytes that could not be written are not tried again: some of them may be in the file.
    const std::size_t used = std::exchange(m_pBlock->used, 0);
    if (used != 0) WriteThrough({m_pBlock->bytes, used});
}

void CQCSVFile::WriteThrough(std::string_view bytes) const {
    qel::WriteFully(WritableDescriptor(), std::as_bytes(std::span(bytes)), GetFilePath().View());
}

void CQCSVFile::WriteOutQuietly() const noexcept {
    try {
        WriteOut();
    } catch (const CFileException&) {  // for callers that want no report
    }
}

ULONGLONG CQCSVFile::GetPosition() const {
    WriteOut();
    return CQFile::GetPosition();
}

std::unique_ptr<CFile> CQCSVFile::Duplicate() const {
    WriteOut();
    return CQFile::Duplicate();
}

ULONGLONG CQCSVFile::Seek(LONGLONG offset, UINT from) {
    WriteOut();
    return CQFile::Seek(offset, from);
}

void CQCSVFile::SetLength(ULONGLONG length) {
    WriteOut();
    CQFile::SetLength(length);
}

ULONGLONG CQCSVFile::GetLength() const {
    WriteOut();
    return CQFile::GetLength();
}

UINT CQCSVFile::Read(void* buffer, UINT count) {
    WriteOut();
    return CQFile::Read(buffer, count);
}

void CQCSVFile::LockRange(ULONGLONG position, ULONGLONG count) {
    WriteOut();
    CQFile::LockRange(position, count);
}

void CQCSVFile::UnlockRange(ULONGLONG position, ULONGLONG count) {
    WriteOut();
    CQFile::UnlockRange(position, count);
}

BOOL CQCSVFile::GetStatus(CFileStatus& status) const {
    WriteOut();
    return CQFile::GetStatus(status);
}

void CQCSVFile::Abort() noexcept {
    WriteOutQuietly();
    CQFile::Abort();
}

void CQCSVFile::Flush() {
    WriteOut();
    CQFile::Flush();
}

void CQCSVFile::Close() {
    try {
        WriteOut();
    } catch (const CFileException&) {
        CQFile::Close();  // closes in any case
        throw;
    }
    CQFile::Close();
}
