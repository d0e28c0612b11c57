#include "qellib10/file/q_file.h"

#include <algorithm>
#include <utility>

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/operation.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/file_operations.h"
#include "qellib10/platform/storage/require_status.h"
#include "qellib10/platform/text/code_page.h"

namespace {

using qel::FailureKind;
using qel::Refuse;

constexpr ULONGLONG kLargestSize = 0xFFFFFFFF;

bool Delete(const CString& name) {
    return qel::Succeeds([&] { qel::DeleteFile(name.View()); });
}

}  // namespace

CQFile::CQFile() noexcept = default;
CQFile::~CQFile() = default;

BOOL CQFile::Open(const char* name, UINT flags, CFileException* error) {
    m_nDeleteOnClose = 0;  // it belongs to the temporary file that is closed here, not to the new one
    return CFile::Open(name, flags, error);
}

BOOL CQFile::IsOpen() const noexcept {
    const HANDLE handle = *this;
    return handle != nullptr && handle != hFileNull ? 1 : 0;
}

int CQFile::CreateTempFile(const char* prefix, int deleteOnClose) {
    qel::Operation operation("CQFile::CreateTempFile");
    m_dwLastError = 0;
    const CString name = GetTempFilePath(prefix);
    if (name.IsEmpty() || !Open(name, modeCreate | modeReadWrite | shareDenyWrite)) {
        if (!name.IsEmpty()) Delete(name);
        m_dwLastError = errorCreateTempFile;
        return operation.Ended(0);
    }
    m_nDeleteOnClose = deleteOnClose;
    return operation.Ended(1);
}

void CQFile::Close() {
    if (std::exchange(m_nDeleteOnClose, 0) == 0 || !IsOpen()) {
        CFile::Close();
        return;
    }
    const CString name = GetFilePath();
    Abort();
    Delete(name);
}

int CQFile::CloseTo(const char* target) {
    qel::Operation operation("CQFile::CloseTo");
    m_nDeleteOnClose = 0;
    if (!IsOpen()) return operation.Ended(1);
    CString name;
    const bool copied = qel::Succeeds([&] {
        name = GetFilePath();
        Close();  // bytes lost here would be missing in the copy: then there is no copy, and the file stays
        qel::CopyToMove(name.View(), CString(target).View(), false);
    });
    if (copied && Delete(name)) return operation.Ended(1);
    m_dwLastError = copied ? errorDelete : errorCopy;
    return operation.Ended(0);
}

int CQFile::CloseToDestroy() {
    qel::Operation operation("CQFile::CloseToDestroy");
    m_nDeleteOnClose = 0;
    if (!IsOpen()) return operation.Ended(1);
    const bool deleted = qel::Succeeds([&] {
        const CString name = GetFilePath();
        Abort();
        qel::DeleteFile(name.View());
    });
    if (!deleted) m_dwLastError = errorDelete;
    return operation.Ended(deleted ? 1 : 0);
}

CString CQFile::GetErrorMessage(DWORD) { return CString(qel::FromUtf8("不明なエラーです。")); }

int CQFile::IsExist(const char* name) {
    CFileStatus status;
    return GetStatus(name, status) ? 1 : 0;
}

int CQFile::GetFileSize(const char* name, DWORD* size) {
    return qel::AsResult("CQFile::GetFileSize", [&] {
        if (size == nullptr) return Refuse(FailureKind::kArgument, "", "no place for the size");
        *size = static_cast<DWORD>(std::min<ULONGLONG>(qel::RequireStatus(CString(name)).m_size, kLargestSize));
        return 1;
    });
}

std::optional<ULONGLONG> qel::FileSize64(std::string_view name) {
    CFileStatus status;
    if (!CFile::GetStatus(CString(name), status)) return std::nullopt;
    return status.m_size;
}

int CQFile::IsCanOverwrite(const char* name) {
    CFileException failure;
    return CFile().Open(name, modeWrite, &failure) || qel::IsMissing(failure) ? 1 : 0;
}
