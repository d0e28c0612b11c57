#include "qellib10/platform/storage/file_failure.h"

#include <new>

#include "qellib10/platform/storage/file_error.h"

namespace qel {

// A closed file has the code of a bad handle, and the framework's words for that name another reason.
int FailedBy(Operation& operation, const CFileException& failure) noexcept {
    const std::string_view item = failure.m_strFileName.View();
    if (failure.m_lOsError == kBadHandle)
        return operation.Failed(FailureKind::kState, item, "no file is open", failure.m_lOsError);
    return operation.Failed(FailureKind::kFile, item, failure.what(), failure.m_lOsError);
}

int RefuseErrno(int error, std::string_view name, std::string_view posixPath) {
    const LONG code = CodeOfErrno(error, posixPath);
    return RefuseBy(CFileException(CauseOfCode(code), code, CString(name)));
}

int FailedBy(Operation& operation, const DataError& failure, const CFile* file) noexcept {
    CString path;
    try {
        if (file != nullptr) path = file->GetFilePath();
    } catch (const std::bad_alloc&) {  // then the failure names no file
    }
    return operation.Failed(FailureKind::kData, path.View(), failure.what());
}

}  // namespace qel
