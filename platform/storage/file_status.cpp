#include "qellib10/platform/storage/file_status.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <new>

#include "qellib10/platform/storage/file.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/file_operations.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/storage/path_parts.h"
#include "qellib10/platform/storage/require_status.h"
#include "qellib10/platform/text/multibyte.h"

namespace {

BYTE AttributesOf(const struct statx& status, const CString& path) {
    BYTE attributes = CFileStatus::normal;
    if (S_ISDIR(status.stx_mode)) attributes |= CFileStatus::directory;
    if (S_ISREG(status.stx_mode)) attributes |= CFileStatus::archive;
    if ((status.stx_mode & 0222) == 0) attributes |= CFileStatus::readOnly;
    if (path.View().substr(qel::NameStart(path.View())).starts_with('.')) attributes |= CFileStatus::hidden;
    return attributes;
}

CFileStatus Describe(const struct statx& status, const CString& path) {
    CFileStatus described;
    const bool bornKnown = (status.stx_mask & STATX_BTIME) != 0;
    described.m_ctime = CTime(bornKnown ? status.stx_btime.tv_sec : status.stx_mtime.tv_sec);
    described.m_mtime = CTime(status.stx_mtime.tv_sec);
    described.m_atime = CTime(status.stx_atime.tv_sec);
    described.m_size = S_ISDIR(status.stx_mode) ? 0 : status.stx_size;
    described.m_attribute = AttributesOf(status, path);
    qel::CopyBounded(described.m_szFullName, path, sizeof described.m_szFullName - 1);
    return described;
}

}  // namespace

CFileStatus qel::RequireStatus(const CString& path) {
    struct statx found = {};
    const std::string posix = ToPosixPath(path.View());
    if (::statx(AT_FDCWD, posix.c_str(), 0, STATX_BASIC_STATS | STATX_BTIME, &found) != 0)
        ThrowErrno(errno, path.View(), posix);
    return Describe(found, FullPath(path.View()));
}

BOOL CFile::GetStatus(const char* name, CFileStatus& status) {
    try {
        status = qel::RequireStatus(CString(name));
        return 1;
    } catch (const CFileException&) {  // also an invalid name
    } catch (const std::bad_alloc&) {
    }
    return 0;
}

BOOL CFile::GetStatus(CFileStatus& status) const {
    struct statx found = {};
    const int file = m_descriptor.Get();
    if (file < 0 || ::statx(file, "", AT_EMPTY_PATH, STATX_BASIC_STATS | STATX_BTIME, &found) != 0) return 0;
    status = Describe(found, m_strFilePath);
    return 1;
}

void CFile::Remove(const char* name) { qel::DeleteFile(CString(name).View()); }

void CFile::Rename(const char* oldName, const char* newName) {
    qel::MoveFile(CString(oldName).View(), CString(newName).View());
}
