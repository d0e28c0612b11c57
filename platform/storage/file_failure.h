#pragma once

#include "qellib10/platform/error.h"
#include "qellib10/platform/operation.h"
#include "qellib10/platform/storage/file.h"
#include "qellib10/platform/storage/file_exception.h"

namespace qel {

/// @p operation fails because the system refused a file, or none was open. @return 0
QELLIB10_INTERNAL_API int FailedBy(Operation& operation, const CFileException& failure) noexcept;

/// Records that the operation that runs is about to return 0 for that. @return 0
inline int RefuseBy(const CFileException& failure) noexcept {
    Operation step(nullptr);
    return FailedBy(step, failure);
}

/// The same for a failed system call on @p name, a path of the library. @return 0
QELLIB10_INTERNAL_API int RefuseErrno(int error, std::string_view name, std::string_view posixPath = {});

/// @p operation fails because bytes, perhaps those of @p file, are not what they claim to be. @return 0
QELLIB10_INTERNAL_API int FailedBy(Operation& operation, const DataError& failure, const CFile* file) noexcept;

/// The same where memory ran out. @return 0
inline int FailedByMemory(Operation& operation) noexcept {
    return operation.Failed(FailureKind::kMemory, "", "out of memory");
}

}  // namespace qel
