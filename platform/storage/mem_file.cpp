#include "qellib10/platform/storage/mem_file.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <stdexcept>
#include <utility>

#include "qellib10/platform/storage/file_error.h"

CMemFile::CMemFile() noexcept = default;
CMemFile::~CMemFile() = default;

void CMemFile::Attach(const BYTE* buffer, UINT size) {
    Abort();
    m_bytes = {buffer, buffer != nullptr ? size : 0};
    m_bAttached = true;
}

std::vector<BYTE> CMemFile::Detach() {
    std::vector<BYTE> bytes = m_bAttached ? std::vector<BYTE>(m_bytes.begin(), m_bytes.end()) : std::move(m_own);
    Abort();
    return bytes;
}

ULONGLONG CMemFile::GetPosition() const { return m_nPosition; }
ULONGLONG CMemFile::GetLength() const { return m_bytes.size(); }

BOOL CMemFile::Open(const char* name, UINT, CFileException* error) {
    if (error != nullptr) *error = CFileException(CFileException::invalidFile, -1, name);
    return 0;
}

ULONGLONG CMemFile::Seek(LONGLONG offset, UINT from) {
    LONGLONG target = from == current ? static_cast<LONGLONG>(m_nPosition)
                      : from == end   ? static_cast<LONGLONG>(m_bytes.size())
                                      : 0;
    if (from > end || __builtin_add_overflow(target, offset, &target) || target < 0) qel::ThrowCode(qel::kBadSeek, "");
    m_nPosition = static_cast<ULONGLONG>(target);
    return m_nPosition;
}

void CMemFile::Extend(ULONGLONG length) {
    if (m_bAttached) qel::ThrowCode(qel::kAccessDenied, "");
    try {
        m_own.resize(length);
    } catch (const std::bad_alloc&) {
        qel::ThrowCode(qel::kOutOfMemory, "");
    } catch (const std::length_error&) {
        qel::ThrowCode(qel::kOutOfMemory, "");
    }
    m_bytes = m_own;
}

void CMemFile::SetLength(ULONGLONG length) {
    Extend(length);
    m_nPosition = length;
}

UINT CMemFile::Read(void* buffer, UINT count) {
    if (m_nPosition >= m_bytes.size()) return 0;
    const auto rest = m_bytes.subspan(m_nPosition);
    const auto got = static_cast<UINT>(std::min<std::size_t>(count, rest.size()));
    if (got > 0) std::memcpy(buffer, rest.data(), got);
    m_nPosition += got;
    return got;
}

void CMemFile::Write(const void* buffer, UINT count) {
    if (count == 0) return;
    if (const ULONGLONG stop = m_nPosition + count; m_bAttached || stop > m_own.size()) Extend(stop);
    std::memcpy(m_own.data() + m_nPosition, buffer, count);
    m_nPosition += count;
}

void CMemFile::Abort() noexcept {
    m_own = {};
    m_bytes = {};
    m_nPosition = 0;
    m_bAttached = false;
}

void CMemFile::Flush() {}
void CMemFile::Close() { Abort(); }
