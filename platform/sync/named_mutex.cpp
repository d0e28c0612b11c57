#include "qellib10/platform/sync/named_mutex.h"

#include "qellib10/platform/sync/last_error.h"
#include "qellib10/platform/sync/object_table.h"

namespace qel {

HANDLE OpenNamedMutex(const char* name) {
    return RunWithLastError([&] { return ObjectTable::Get().Open(name, ObjectKind::Mutex); }, HANDLE{});
}

OpenedObject CreateNamedMutex(const char* name) {
    return CreateWithLastError([&] { return ObjectTable::Get().Create(name, ObjectKind::Mutex, 0); });
}

DWORD WaitForMutex(HANDLE mutex, DWORD milliseconds) {
    return RunWithLastError([&] { return ObjectTable::Get().Wait(mutex, milliseconds); }, DWORD{kWaitFailed});
}

bool ReleaseNamedMutex(HANDLE mutex) {
    return RunWithLastError([&] { return ObjectTable::Get().Release(mutex), true; }, false);
}

}  // namespace qel
