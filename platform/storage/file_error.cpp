#include "qellib10/platform/storage/file_error.h"

#include <sys/stat.h>

#include <cerrno>

#include "qellib10/platform/storage/file_exception.h"
#include "qellib10/platform/storage/path_parts.h"

namespace qel {
namespace {

bool FolderExists(std::string_view posixPath) {
    struct stat status {};
    return ::stat(PosixFolderOf(posixPath).c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

LONG CodeOfErrno(int error, std::string_view posixPath) {
    switch (error) {
        case ENOENT:
            return posixPath.empty() || FolderExists(posixPath) ? kFileMissing : kFolderMissing;
        case ENOTDIR:
        case ELOOP:
            return kFolderMissing;
        case ENAMETOOLONG:
            return kPathTooLong;
        case EMFILE:
        case ENFILE:
            return kTooManyOpen;
        case EACCES:
        case EPERM:
        case EISDIR:
            return kAccessDenied;
        case ENOMEM:
            return kOutOfMemory;
        case EXDEV:
            return kOtherVolume;
        case EROFS:
            return kWriteProtected;
        case EIO:
            return kReadFault;
        case ETXTBSY:  // the file of a running program
        case EBUSY:
            return kSharingViolation;
        case EEXIST:
            return kAlreadyExists;
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return kDiskFull;
        case ENOTEMPTY:
            return kFolderNotEmpty;
        default:
            return kGeneralFailure;
    }
}

int CauseOfCode(LONG code) {
    switch (code) {
        case kBadHandle:
        case kFileMissing:
            return CFileException::fileNotFound;
        case kFolderMissing:
        case kOtherVolume:
        case kBadNetworkPath:
        case kBadName:
        case kNotAFolder:
        case kPathTooLong:
            return CFileException::badPath;
        case kTooManyOpen:
            return CFileException::tooManyOpenFiles;
        case kAccessDenied:
        case kWriteProtected:
        case kFileExists:
        case kAlreadyExists:
            return CFileException::accessDenied;
        case kOutOfMemory:
            return CFileException::genericException;
        case kSharingViolation:
            return CFileException::sharingViolation;
        case kLockViolation:
            return CFileException::lockViolation;
        case kDiskFull:
            return CFileException::diskFull;
        case kBadSeek:
            return CFileException::badSeek;
        case kFolderNotEmpty:
            return CFileException::removeCurrentDir;
        default:
            return CFileException::hardIO;
    }
}

void ThrowCode(LONG code, std::string_view name) { throw CFileException(CauseOfCode(code), code, CString(name)); }

void ThrowErrno(int error, std::string_view name, std::string_view posixPath) {
    ThrowCode(CodeOfErrno(error, posixPath), name);
}

void ThrowWriteErrno(int error, std::string_view name) {
    ThrowCode(error == EIO ? LONG{kWriteFault} : CodeOfErrno(error), name);
}

}  // namespace qel
