#include "qellib10/platform/storage/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <limits>
#include <new>
#include <utility>

#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/file_failure.h"
#include "qellib10/platform/storage/open.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/storage/path_parts.h"
#include "qellib10/platform/storage/record_lock.h"
#include "qellib10/platform/storage/share_lock.h"
#include "qellib10/platform/storage/uninterrupted.h"

const HANDLE CFile::hFileNull = reinterpret_cast<HANDLE>(-1);  // NOLINT: the framework's value

CFile::CFile() noexcept = default;
CFile::CFile(const char* name, UINT flags) { OpenOrThrow(name, flags); }
CFile::~CFile() { CloseDescriptor(); }

BOOL CFile::Open(const char* name, UINT flags, CFileException* error) {
    qel::Operation operation("CFile::Open");
    try {
        Abort();
        try {
            OpenOrThrow(name, flags);
            return operation.Ended(1);
        } catch (const CFileException& failure) {
            qel::FailedBy(operation, failure);
            if (error != nullptr) *error = failure;
        }
    } catch (const std::bad_alloc&) {
        qel::FailedByMemory(operation);
        if (error != nullptr) *error = CFileException(qel::CauseOfCode(qel::kOutOfMemory), qel::kOutOfMemory);
    }
    return 0;
}

void CFile::OpenOrThrow(const char* name, UINT flags) {
    const CString path(name);
    const std::string posix = qel::ToPosixPath(path.View());
    CString full = qel::FullPath(path.View());  // a relative name belongs to the folder that is current now
    m_descriptor = qel::OpenShared(posix, qel::OpenRequest::OfFlags(flags), path.View());
    m_bDuplicated = false;
    m_nFlags = flags;
    m_strFilePath = std::move(full);
}

std::unique_ptr<CFile> CFile::Duplicate() const {
    qel::Descriptor copy(::fcntl(Checked(Need::any).Get(), F_DUPFD_CLOEXEC, 0));
    if (!copy) qel::ThrowErrno(errno, m_strFilePath.View());
    auto file = std::make_unique<CFile>();
    file->m_descriptor = std::move(copy);
    file->m_bDuplicated = m_bDuplicated = true;
    file->m_nFlags = m_nFlags;
    file->m_strFilePath = m_strFilePath;
    return file;
}

const qel::Descriptor& CFile::ReadableDescriptor() const { return Checked(Need::reading); }
const qel::Descriptor& CFile::WritableDescriptor() const { return Checked(Need::writing); }

const qel::Descriptor& CFile::Checked(Need need) const {
    if (!m_descriptor) qel::ThrowCode(qel::kBadHandle, m_strFilePath.View());
    // For wrong access the system reports a closed descriptor, so we check the access first.
    const UINT access = m_nFlags & kAccessMask;
    if ((need == Need::reading && access == modeWrite) || (need == Need::writing && access == modeRead))
        qel::ThrowCode(qel::kAccessDenied, m_strFilePath.View());
    return m_descriptor;
}

ULONGLONG CFile::GetPosition() const {
    const off_t position = ::lseek(Checked(Need::any).Get(), 0, SEEK_CUR);
    if (position < 0) qel::ThrowErrno(errno, m_strFilePath.View());
    return static_cast<ULONGLONG>(position);
}

ULONGLONG CFile::Seek(LONGLONG offset, UINT from) {
    const int descriptor = Checked(Need::any).Get();
    const int whence = from == begin ? SEEK_SET : from == current ? SEEK_CUR : from == end ? SEEK_END : -1;
    const off_t position = ::lseek(descriptor, offset, whence);
    if (position < 0) qel::ThrowCode(qel::kBadSeek, m_strFilePath.View());
    return static_cast<ULONGLONG>(position);
}

ULONGLONG CFile::GetLength() const {
    struct stat status {};
    if (::fstat(Checked(Need::any).Get(), &status) != 0) qel::ThrowErrno(errno, m_strFilePath.View());
    return static_cast<ULONGLONG>(status.st_size);
}

void CFile::SetLength(ULONGLONG length) {
    const int descriptor = Checked(Need::writing).Get();
    // Beyond the range of the system's offsets.
    if (length > static_cast<ULONGLONG>(std::numeric_limits<off_t>::max()))
        qel::ThrowCode(qel::kDiskFull, m_strFilePath.View());
    const off_t target = static_cast<off_t>(length);
    if (qel::Uninterrupted([&] { return ::ftruncate(descriptor, target); }) != 0) {
        qel::ThrowWriteErrno(errno, m_strFilePath.View());
    }
    Seek(target, begin);
}

UINT CFile::Read(void* buffer, UINT count) {
    if (count == 0) return 0;
    const std::span bytes(static_cast<std::byte*>(buffer), count);
    return static_cast<UINT>(qel::ReadFully(Checked(Need::reading), bytes, m_strFilePath.View()));
}

void CFile::Write(const void* buffer, UINT count) {
    if (count == 0) return;
    const std::span bytes(static_cast<const std::byte*>(buffer), count);
    qel::WriteFully(Checked(Need::writing), bytes, m_strFilePath.View());
}

void CFile::LockRange(ULONGLONG position, ULONGLONG count) { SetRangeLock(F_WRLCK, position, count); }
void CFile::UnlockRange(ULONGLONG position, ULONGLONG count) { SetRangeLock(F_UNLCK, position, count); }

void CFile::SetRangeLock(short type, ULONGLONG position, ULONGLONG count) {
    const int descriptor = Checked(Need::any).Get();
    if (count == 0) return;  // the system would take 0 as "to the end"
    const auto limit = static_cast<ULONGLONG>(qel::kShareMarksAt);
    if (position > limit || count > limit - position) qel::ThrowCode(qel::kBadSeek, m_strFilePath.View());
    // A lock for writing needs a descriptor that can write.
    if (type == F_WRLCK && (m_nFlags & kAccessMask) == modeRead) type = F_RDLCK;
    struct flock range = qel::RecordLock(type, static_cast<off_t>(position), static_cast<off_t>(count));
    if (::fcntl(descriptor, F_OFD_SETLK, &range) == 0) return;
    if (errno == EAGAIN) qel::ThrowCode(qel::kLockViolation, m_strFilePath.View());
    qel::ThrowErrno(errno, m_strFilePath.View());
}

int CFile::CloseDescriptor() noexcept {
    m_strFilePath.Empty();
    return m_descriptor ? qel::CloseShared(m_descriptor, m_bDuplicated) : 0;
}

void CFile::Abort() noexcept { CloseDescriptor(); }

void CFile::Flush() {
    if (m_descriptor) qel::FlushData(Checked(Need::writing), m_strFilePath.View());
}

void CFile::Close() {
    const CString path = std::move(m_strFilePath);
    if (const int error = CloseDescriptor()) qel::ThrowWriteErrno(error, path.View());
}

CString CFile::GetFileName() const { return m_strFilePath.Mid(static_cast<int>(qel::NameStart(m_strFilePath.View()))); }

CString CFile::GetFileTitle() const {
    const CString name = GetFileName();
    const int dot = name.ReverseFind('.');
    return dot >= 0 ? name.Left(dot) : name;
}

CString CFile::GetFilePath() const { return m_strFilePath; }

CFile::operator HANDLE() const noexcept {
    // One more than the descriptor, because callers treat a handle of 0 as closed.
    return m_descriptor ? reinterpret_cast<HANDLE>(static_cast<LONGLONG>(m_descriptor.Get()) + 1) : hFileNull;
}
