#include "qellib10/platform/storage/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <limits>
#include <utility>

#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/open.h"
#include "qellib10/platform/storage/path.h"

const HANDLE CFile::hFileNull = reinterpret_cast<HANDLE>(-1);  // NOLINT: the framework's value

namespace {

// Repeats a system call that a signal has interrupted.
template <class Call> auto Uninterrupted(Call&& call) {
    for (;;) {
        const auto result = call();
        if (result != -1 || errno != EINTR) return result;
    }
}

[[noreturn]] void ThrowWriteError(int error, const CString& path) {
    if (error == EIO) qel::ThrowCode(qel::kWriteFault, path.View());
    qel::ThrowErrno(error, path.View());
}

// @param code what to report when the system's offsets do not reach so far
off_t AsOffset(ULONGLONG value, LONG code, const CString& path) {
    if (value > static_cast<ULONGLONG>(std::numeric_limits<off_t>::max())) qel::ThrowCode(code, path.View());
    return static_cast<off_t>(value);
}

}  // namespace

CFile::CFile() noexcept = default;
CFile::CFile(const char* name, UINT flags) { OpenOrThrow(name, flags); }
CFile::~CFile() = default;

BOOL CFile::Open(const char* name, UINT flags, CFileException* error) {
    try {
        Abort();
        OpenOrThrow(name, flags);
        return 1;
    } catch (const CFileException& failure) {
        if (error != nullptr) *error = failure;
        return 0;
    }
}

void CFile::OpenOrThrow(const char* name, UINT flags) {
    const CString path(name);
    qel::Descriptor opened = qel::OpenFile(qel::ToPosixPath(path.View()), flags, path.View());
    m_strFilePath = qel::FullPath(path.View());
    m_nFlags = flags;
    m_descriptor = std::move(opened);
}

std::unique_ptr<CFile> CFile::Duplicate() const {
    const int copy = ::fcntl(Checked(Need::any), F_DUPFD_CLOEXEC, 0);
    if (copy < 0) qel::ThrowErrno(errno, m_strFilePath.View());
    auto file = std::make_unique<CFile>();
    file->m_descriptor = qel::Descriptor(copy);
    file->m_nFlags = m_nFlags;
    file->m_strFilePath = m_strFilePath;
    return file;
}

int CFile::Checked(Need need) const {
    if (!m_descriptor) qel::ThrowCode(qel::kBadHandle, m_strFilePath.View());
    // The system answers a wrong access with the error of a closed descriptor; so it is asked only for a right one.
    const UINT access = m_nFlags & kAccessMask;
    if ((need == Need::reading && access == modeWrite) || (need == Need::writing && access == modeRead))
        qel::ThrowCode(qel::kAccessDenied, m_strFilePath.View());
    return m_descriptor.Get();
}

ULONGLONG CFile::GetPosition() const {
    const off_t position = ::lseek(Checked(Need::any), 0, SEEK_CUR);
    if (position < 0) qel::ThrowErrno(errno, m_strFilePath.View());
    return static_cast<ULONGLONG>(position);
}

ULONGLONG CFile::Seek(LONGLONG offset, UINT from) {
    const int descriptor = Checked(Need::any);
    const int whence = from == begin ? SEEK_SET : from == current ? SEEK_CUR : from == end ? SEEK_END : -1;
    const off_t position = ::lseek(descriptor, offset, whence);
    if (position < 0) qel::ThrowCode(qel::kBadSeek, m_strFilePath.View());
    return static_cast<ULONGLONG>(position);
}

ULONGLONG CFile::GetLength() const {
    struct stat status {};
    if (::fstat(Checked(Need::any), &status) != 0) qel::ThrowErrno(errno, m_strFilePath.View());
    return static_cast<ULONGLONG>(status.st_size);
}

void CFile::SetLength(ULONGLONG length) {
    const int descriptor = Checked(Need::writing);
    const off_t target = AsOffset(length, qel::kDiskFull, m_strFilePath);
    if (Uninterrupted([&] { return ::ftruncate(descriptor, target); }) != 0) ThrowWriteError(errno, m_strFilePath);
    Seek(target, begin);
}

UINT CFile::Read(void* buffer, UINT count) {
    const int descriptor = Checked(Need::reading);
    char* const bytes = static_cast<char*>(buffer);
    UINT done = 0;
    while (done < count) {
        const ssize_t got = Uninterrupted([&] { return ::read(descriptor, bytes + done, count - done); });
        if (got < 0) qel::ThrowErrno(errno, m_strFilePath.View());
        if (got == 0) break;
        done += static_cast<UINT>(got);
    }
    return done;
}

void CFile::Write(const void* buffer, UINT count) {
    const int descriptor = Checked(Need::writing);
    const char* const bytes = static_cast<const char*>(buffer);
    UINT done = 0;
    while (done < count) {
        const ssize_t put = Uninterrupted([&] { return ::write(descriptor, bytes + done, count - done); });
        if (put < 0) ThrowWriteError(errno, m_strFilePath);
        if (put == 0) throw CFileException(CFileException::diskFull, -1, m_strFilePath);
        done += static_cast<UINT>(put);
    }
}

void CFile::LockRange(ULONGLONG position, ULONGLONG count) { SetRangeLock(F_WRLCK, position, count); }
void CFile::UnlockRange(ULONGLONG position, ULONGLONG count) { SetRangeLock(F_UNLCK, position, count); }

void CFile::SetRangeLock(short type, ULONGLONG position, ULONGLONG count) {
    const int descriptor = Checked(Need::any);
    if (count == 0) return;  // to the system 0 would mean "to the end"
    struct flock range {};
    // A lock for writing needs a descriptor that can write.
    range.l_type = type == F_WRLCK && (m_nFlags & kAccessMask) == modeRead ? short{F_RDLCK} : type;
    range.l_whence = SEEK_SET;
    range.l_start = AsOffset(position, qel::kBadSeek, m_strFilePath);
    range.l_len = AsOffset(count, qel::kBadSeek, m_strFilePath);
    if (::fcntl(descriptor, F_OFD_SETLK, &range) == 0) return;
    if (errno == EAGAIN) qel::ThrowCode(qel::kLockViolation, m_strFilePath.View());
    qel::ThrowErrno(errno, m_strFilePath.View());
}

void CFile::Abort() noexcept {
    m_descriptor.Reset();
    m_strFilePath.Empty();
}

void CFile::Flush() {
    if (!m_descriptor) return;
    const int descriptor = Checked(Need::writing);
    if (Uninterrupted([&] { return ::fdatasync(descriptor); }) != 0) ThrowWriteError(errno, m_strFilePath);
}

void CFile::Close() {
    if (!m_descriptor) return;
    const CString path = std::exchange(m_strFilePath, CString());
    // Whatever the answer, Linux has closed it; after EINTR too.
    if (::close(m_descriptor.Release()) != 0 && errno != EINTR) ThrowWriteError(errno, path);
}

CString CFile::GetFileName() const { return m_strFilePath.Mid(static_cast<int>(qel::NameStart(m_strFilePath.View()))); }

CString CFile::GetFileTitle() const {
    const CString name = GetFileName();
    const int dot = name.ReverseFind('.');
    return dot >= 0 ? name.Left(dot) : name;
}

CString CFile::GetFilePath() const { return m_strFilePath; }

CFile::operator HANDLE() const noexcept {
    // One more than the descriptor, because callers count a handle of 0 as closed.
    return m_descriptor ? reinterpret_cast<HANDLE>(static_cast<LONGLONG>(m_descriptor.Get()) + 1) : hFileNull;
}
