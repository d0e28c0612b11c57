#include "qellib10/platform/archive/archive.h"

#include <algorithm>
#include <array>
#include <bit>
#include <exception>
#include <utility>

#include "qellib10/platform/archive/object_tables.h"

namespace {

constexpr std::size_t kMinBuffer = 128;

CFile* Required(CFile* file) {
    if (file == nullptr) throw CArchiveException(CArchiveException::genericException);
    return file;
}

}  // namespace

CArchive::CArchive(CFile* file, UINT mode, int bufferSize)
    : m_strFileName(Required(file)->GetFilePath()),
      m_pFile(file),
      m_nMode(mode),
      m_nExceptions(std::uncaught_exceptions()),
      m_buffer(std::max(kMinBuffer, static_cast<std::size_t>(std::max(bufferSize, 0)))) {}

CArchive::~CArchive() noexcept(false) {
    if ((m_nMode & bNoFlushOnDelete) != 0) return;
    if (std::uncaught_exceptions() == m_nExceptions) {
        Close();
        return;
    }
    try {
        Close();
    } catch (const CFileException&) {  // the current exception already says that the archive is not complete
    }
}

void CArchive::Throw(int cause) const { throw CArchiveException(cause, m_strFileName); }

void CArchive::RequireLoading() const {
    if (IsStoring()) Throw(CArchiveException::writeOnly);
    if (m_pFile == nullptr) Throw(CArchiveException::genericException);
}

void CArchive::RequireStoring() const {
    if (IsLoading()) Throw(CArchiveException::readOnly);
    if (m_pFile == nullptr) Throw(CArchiveException::genericException);
}

UINT CArchive::TakeBuffered(std::byte* target, UINT count) noexcept {
    const std::size_t taken = std::min<std::size_t>(count, m_nEnd - m_nAt);
    if (taken > 0) std::memcpy(target, m_buffer.data() + m_nAt, taken);
    m_nAt += taken;
    return static_cast<UINT>(taken);
}

UINT CArchive::Read(void* buffer, UINT count) {
    RequireLoading();
    auto* const target = static_cast<std::byte*>(buffer);
    UINT done = TakeBuffered(target, count);
    while (done < count) {
        const UINT rest = count - done;
        UINT got = 0;
        if (rest >= m_buffer.size()) {
            got = m_pFile->Read(target + done, rest);
        } else {
            m_nAt = m_nEnd = 0;
            m_nEnd = m_pFile->Read(m_buffer.data(), static_cast<UINT>(m_buffer.size()));
            got = TakeBuffered(target + done, rest);
        }
        if (got == 0) break;
        done += got;
    }
    return done;
}

// A number of 1 to 8 bytes, which an archive keeps lowest byte first.
void CArchive::WriteNumber(const void* number, UINT size) {
    if constexpr (std::endian::native == std::endian::little) {
        Write(number, size);
    } else {
        std::array<std::byte, 8> bytes = {};
        std::reverse_copy(static_cast<const std::byte*>(number), static_cast<const std::byte*>(number) + size,
                          bytes.begin());
        Write(bytes.data(), size);
    }
}

void CArchive::ReadNumber(void* number, UINT size) {
    ReadAll(number, size);
    auto* const bytes = static_cast<std::byte*>(number);
    if constexpr (std::endian::native == std::endian::big) std::reverse(bytes, bytes + size);
}

void CArchive::ReadAll(void* buffer, UINT count) {
    if (Read(buffer, count) != count) Throw(CArchiveException::endOfFile);
}

void CArchive::Write(const void* buffer, UINT count) {
    RequireStoring();
    if (count > m_buffer.size() - m_nAt) Flush();
    if (count >= m_buffer.size()) {
        m_pFile->Write(buffer, count);
    } else if (count > 0) {
        std::memcpy(m_buffer.data() + m_nAt, buffer, count);
        m_nAt += count;
    }
}

void CArchive::Flush() {
    if (m_pFile == nullptr) return;
    const std::size_t at = std::exchange(m_nAt, 0);
    const std::size_t end = std::exchange(m_nEnd, 0);
    if (IsLoading()) {
        if (at < end) m_pFile->Seek(-static_cast<LONGLONG>(end - at), CFile::current);
    } else if (at > 0) {
        m_pFile->Write(m_buffer.data(), static_cast<UINT>(at));
    }
}

void CArchive::Close() {
    // Released also if the flush throws: the file is then incomplete, and a second try cannot repair it.
    struct LetGo {
        ~LetGo() { archive.Abort(); }
        CArchive& archive;
    } const letGo{*this};
    Flush();
}

void CArchive::Abort() noexcept {
    m_pFile = nullptr;
    m_nAt = m_nEnd = 0;
    m_pTables.reset();
}

void CArchive::WriteCount(DWORD count) {
    constexpr WORD kLong = 0xFFFF;
    if (count < kLong) {
        *this << static_cast<WORD>(count);
    } else {
        *this << kLong << count;
    }
}

DWORD CArchive::ReadCount() {
    const WORD brief = Get<WORD>();
    const DWORD count = brief < 0xFFFF ? brief : Get<DWORD>();
    RequireLeft(count);
    return count;
}

std::optional<ULONGLONG> CArchive::BytesLeft() const {
    RequireLoading();
    try {
        const ULONGLONG length = m_pFile->GetLength();
        const ULONGLONG position = m_pFile->GetPosition();
        return m_nEnd - m_nAt + (length > position ? length - position : 0);
    } catch (const CFileException&) {  // an application's own file class without a length
        return std::nullopt;
    }
}

void CArchive::RequireLeft(ULONGLONG count) const {
    if (count <= m_nEnd - m_nAt) return;
    if (const auto left = BytesLeft(); left && count > *left) Throw(CArchiveException::endOfFile);
}

CArchive& operator<<(CArchive& archive, const COleDateTime& time) {
    return archive << static_cast<LONG>(time.GetStatus()) << time.m_dt;
}

CArchive& operator>>(CArchive& archive, COleDateTime& time) {
    LONG status = 0;
    COleDateTime read;
    archive >> status >> read.m_dt;
    read.SetStatus(static_cast<COleDateTime::DateTimeStatus>(status));
    time = read;
    return archive;
}
