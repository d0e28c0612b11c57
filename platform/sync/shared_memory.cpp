#include "qellib10/platform/sync/shared_memory.h"

#include "qellib10/platform/sync/last_error.h"
#include "qellib10/platform/sync/object_table.h"

namespace qel {

HANDLE OpenSharedMemory(const char* name) {
    return RunWithLastError([&] { return ObjectTable::Get().Open(name, ObjectKind::Memory); }, HANDLE{});
}

OpenedObject CreateSharedMemory(const char* name, DWORD size) {
    return CreateWithLastError([&] { return ObjectTable::Get().Create(name, ObjectKind::Memory, size); });
}

void* MapView(HANDLE memory, bool isWritable, std::size_t size) {
    return RunWithLastError([&] { return ObjectTable::Get().Map(memory, isWritable, size); },
                            static_cast<void*>(nullptr));
}

bool UnmapView(const void* view) {
    return RunWithLastError([&] { return ObjectTable::Get().Unmap(view), true; }, false);
}

}  // namespace qel
