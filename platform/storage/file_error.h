#pragma once

#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/storage/file_exception.h"
#include "qellib10/platform/types.h"

namespace qel {

/// The numbers that the framework uses for the system's errors; CFileException::m_lOsError holds them.
enum SystemCode : LONG {
    kFileMissing = 2,
    kFolderMissing = 3,
    kTooManyOpen = 4,
    kAccessDenied = 5,
    kBadHandle = 6,
    kOutOfMemory = 8,
    kOtherVolume = 17,
    kWriteProtected = 19,
    kWriteFault = 29,
    kReadFault = 30,
    kGeneralFailure = 31,
    kSharingViolation = 32,
    kLockViolation = 33,
    kBadNetworkPath = 53,
    kFileExists = 80,
    kBadParameter = 87,
    kBufferTooSmall = 111,
    kDiskFull = 112,
    kBadName = 123,
    kBadSeek = 131,
    kFolderNotEmpty = 145,
    kAlreadyExists = 183,
    kPathTooLong = 206,
    kNotAFolder = 267,
    kNotOwner = 288,
    kBadAddress = 487,
    kFileAltered = 1006,
};

/// The number for a failed system call on the POSIX path @p posixPath. It distinguishes a missing file from a missing
/// folder. Without a path a missing name is kFileMissing.
LONG CodeOfErrno(int error, std::string_view posixPath = {});

/// The cause (CFileException::fileNotFound ...) for a number.
int CauseOfCode(LONG code);

/// Whether it failed because nothing has the name. Something that could not be checked may exist.
inline bool IsMissing(const CFileException& failure) {
    return failure.m_cause == CFileException::fileNotFound || failure.m_cause == CFileException::badPath;
}

/// @throws CFileException with @p code, its cause and @p name, the path as the caller knows it.
[[noreturn]] void ThrowCode(LONG code, std::string_view name);
[[noreturn]] QELLIB10_INTERNAL_API void ThrowErrno(int error, std::string_view name, std::string_view posixPath = {});
/// The same for a call that writes, for which an input/output error is a write fault.
[[noreturn]] void ThrowWriteErrno(int error, std::string_view name);

}  // namespace qel
