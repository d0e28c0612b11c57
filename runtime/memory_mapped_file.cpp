#include "qellib10/runtime/memory_mapped_file.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <span>
#include <string_view>
#include <thread>
#include <utility>

#include "qellib10/platform/operation.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/sync/handle.h"
#include "qellib10/platform/sync/last_error.h"
#include "qellib10/platform/sync/named_mutex.h"
#include "qellib10/platform/sync/shared_memory.h"

namespace {

using qel::FailureKind;

constexpr DWORD kMapWrite = 2;

// Between two attempts to get a mutex that the system refuses.
constexpr std::chrono::milliseconds kPause{10};

constexpr std::string_view kNotOpen = "no block is open";

struct Cause {
    DWORD code;
    FailureKind kind;
    std::string_view text;
};
constexpr std::array kNotOpened = {
    Cause{qel::kFolderMissing, FailureKind::kArgument, "a backslash in the name"},
    Cause{qel::kBadHandle, FailureKind::kArgument, "an empty name, or that of a mutex"},
    Cause{qel::kOutOfMemory, FailureKind::kMemory, "out of memory"},
    Cause{qel::kBadParameter, FailureKind::kArgument, "no name, or no size for a new block"},
    Cause{qel::kPathTooLong, FailureKind::kArgument, "the name is too long"},
};
constexpr std::array kNotMapped = {
    Cause{qel::kAccessDenied, FailureKind::kArgument, "more bytes than the block has"},
    Cause{qel::kBadHandle, FailureKind::kState, kNotOpen},  // a parent's, in its child
    Cause{qel::kOutOfMemory, FailureKind::kMemory, "out of memory"},
    Cause{qel::kFileAltered, FailureKind::kFile, "another program has cut the block"},
};

// Records the system's last error as the reason, for the block of that name.
void FailedByLastError(qel::Operation& operation, std::string_view name, std::span<const Cause> causes) {
    const DWORD code = qel::LastError();
    const auto known = std::ranges::find(causes, code, &Cause::code);
    const Cause cause = known != causes.end() ? *known : Cause{code, FailureKind::kFile, "refused by the system"};
    operation.Failed(cause.kind, name, cause.text, static_cast<long>(code));
}

}  // namespace

CMemoryMappedFile::~CMemoryMappedFile() {
    CMemoryMappedFile::GetDataPtrUnmap();
    CMemoryMappedFile::Close();
}

int CMemoryMappedFile::Open(DWORD access, const char* name, DWORD size) {
    qel::Operation operation("CMemoryMappedFile::Open");
    const auto open = [&] {
        CString kept(name);
        if (!IsOpen()) m_hMapping = qel::OpenSharedMemory(name);
        if (!IsOpen()) m_hMapping = qel::CreateSharedMemory(name, size).handle;
        if (!IsOpen()) return false;
        m_szName = std::move(kept);
        m_nAccess = access;
        return true;
    };
    const bool isOpen = qel::RunWithLastError(open, false);
    m_nLastError = isOpen ? 0 : qel::LastError();
    if (!isOpen) FailedByLastError(operation, name != nullptr ? name : "", kNotOpened);
    return operation.Ended(isOpen ? 1 : 0);
}

void CMemoryMappedFile::Close() {
    if (IsOpen()) qel::CloseHandle(std::exchange(m_hMapping, nullptr));
}

void* CMemoryMappedFile::GetDataPtr(DWORD access, DWORD size) {
    qel::Operation operation("CMemoryMappedFile::GetDataPtr");
    if (!IsOpen()) return operation.Ended<void*>(nullptr, FailureKind::kState, kNotOpen);
    if (m_pView != nullptr) GetDataPtrUnmap();
    m_pView = qel::MapView(m_hMapping, (access & kMapWrite) != 0, size);
    m_nLastError = qel::LastError();
    if (m_pView == nullptr) FailedByLastError(operation, m_szName.View(), kNotMapped);
    return operation.Ended(m_pView);
}

void CMemoryMappedFile::GetDataPtrUnmap() {
    if (m_pView != nullptr) qel::UnmapView(std::exchange(m_pView, nullptr));
}

int CMemoryMappedFile::SetData(void* /*data*/, DWORD /*size*/, DWORD* written) {
    qel::Operation operation("CMemoryMappedFile::SetData");
    if (!IsOpen()) return operation.Failed(FailureKind::kState, "", kNotOpen);
    if (written != nullptr) *written = 0;
    m_nLastError = qel::kBadHandle;
    return operation.Failed(FailureKind::kState, m_szName.View(), "only written through its view", m_nLastError);
}

CAutoLockedMemoryMappedFile::~CAutoLockedMemoryMappedFile() {
    CAutoLockedMemoryMappedFile::GetDataPtrUnmap();
    CMemoryMappedFile::Close();
}

void* CAutoLockedMemoryMappedFile::GetDataPtr(DWORD access, DWORD size) {
    qel::Operation operation("CAutoLockedMemoryMappedFile::GetDataPtr");
    GetDataPtrUnmap();
    // From here on the base has no view, so it does not unmap, which would release the lock.
    if (!IsOpen()) return operation.Ended<void*>(nullptr, FailureKind::kState, kNotOpen);
    if (!TakeLock()) {
        FailedByLastError(operation, GetName().View(), kNotOpened);
        return nullptr;
    }
    void* view = CMemoryMappedFile::GetDataPtr(access, size);
    if (view == nullptr) GetDataPtrUnmap();
    return operation.Ended(view);
}

void CAutoLockedMemoryMappedFile::GetDataPtrUnmap() {
    CMemoryMappedFile::GetDataPtrUnmap();
    if (m_hMutex == nullptr) return;
    qel::ReleaseNamedMutex(m_hMutex);
    qel::CloseHandle(std::exchange(m_hMutex, nullptr));
}

bool CAutoLockedMemoryMappedFile::TakeLock() {
    CString name;
    const auto makeName = [&] {
        name = "MM::" + GetName();
        return true;
    };
    if (!qel::RunWithLastError(makeName, false)) {
        SetLastError(qel::LastError());
        return false;
    }
    for (;;) {
        const DWORD errorBefore = qel::LastError();
        const qel::OpenedObject mutex = qel::CreateNamedMutex(name);
        if (mutex.existed) qel::SetLastError(errorBefore);  // as if it had only been opened
        m_hMutex = mutex.handle;
        if (m_hMutex != nullptr) {
            const DWORD result = qel::WaitForMutex(m_hMutex, qel::kInfinite);
            m_wasAbandoned = mutex.wasLeftOwned || result == qel::kWaitAbandoned;
            if (result == qel::kWaitObject || result == qel::kWaitAbandoned) return true;
            qel::CloseHandle(std::exchange(m_hMutex, nullptr));
        } else if (const DWORD error = qel::LastError(); error == qel::kFolderMissing || error == qel::kPathTooLong) {
            SetLastError(error);
            return false;
        }
        std::this_thread::sleep_for(kPause);
    }
}

bool qel::WasAbandoned(const CAutoLockedMemoryMappedFile& block) noexcept { return block.m_wasAbandoned; }
