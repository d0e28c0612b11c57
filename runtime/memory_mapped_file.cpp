#include "qellib10/runtime/memory_mapped_file.h"

#include <chrono>
#include <thread>
#include <utility>

#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/sync/handle.h"
#include "qellib10/platform/sync/last_error.h"
#include "qellib10/platform/sync/named_mutex.h"
#include "qellib10/platform/sync/shared_memory.h"

namespace {

constexpr DWORD kMapWrite = 2;

// Between two attempts to get a mutex that the system refuses.
constexpr std::chrono::milliseconds kPause{10};

}  // namespace

CMemoryMappedFile::~CMemoryMappedFile() {
    CMemoryMappedFile::GetDataPtrUnmap();
    CMemoryMappedFile::Close();
}

int CMemoryMappedFile::Open(DWORD access, const char* name, DWORD size) {
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
    return isOpen ? 1 : 0;
}

void CMemoryMappedFile::Close() {
    if (IsOpen()) qel::CloseHandle(std::exchange(m_hMapping, nullptr));
}

void* CMemoryMappedFile::GetDataPtr(DWORD access, DWORD size) {
    if (!IsOpen()) return nullptr;
    if (m_pView != nullptr) GetDataPtrUnmap();
    m_pView = qel::MapView(m_hMapping, (access & kMapWrite) != 0, size);
    m_nLastError = qel::LastError();
    return m_pView;
}

void CMemoryMappedFile::GetDataPtrUnmap() {
    if (m_pView != nullptr) qel::UnmapView(std::exchange(m_pView, nullptr));
}

int CMemoryMappedFile::SetData(void* /*data*/, DWORD /*size*/, DWORD* written) {
    if (!IsOpen()) return 0;
    if (written != nullptr) *written = 0;
    m_nLastError = qel::kBadHandle;
    return 0;
}

CAutoLockedMemoryMappedFile::~CAutoLockedMemoryMappedFile() {
    CAutoLockedMemoryMappedFile::GetDataPtrUnmap();
    CMemoryMappedFile::Close();
}

void* CAutoLockedMemoryMappedFile::GetDataPtr(DWORD access, DWORD size) {
    GetDataPtrUnmap();
    // From here on the base has no view, so it does not unmap, which would release the lock.
    if (!IsOpen() || !TakeLock()) return nullptr;
    void* view = CMemoryMappedFile::GetDataPtr(access, size);
    if (view == nullptr) GetDataPtrUnmap();
    return view;
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
