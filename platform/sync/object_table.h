#pragma once

#include <cstddef>
#include <cstdint>
#include <map>

#include "qellib10/platform/fork_safe_lock.h"
#include "qellib10/platform/sync/handle.h"
#include "qellib10/platform/sync/object_names.h"

namespace qel {

/// All handles and views of this process. A handle's value is never used twice, so a copy of a closed handle always
/// gets a clear error (6), whatever was opened since. Operations throw SystemFailure; any thread may call them.
///
/// A forked child has no handles: its parent's objects live and end with the parent. Views stay mapped in it.
class ObjectTable {
public:
    /// The process's only table. It is never destroyed, because objects may be released after all statics.
    static ObjectTable& Get();

    /// Returns a handle to the object of that name; code 87 for no name, 6 for an empty one.
    HANDLE Open(const char* name, ObjectKind kind);
    /// The same, created if it does not exist. Null and the empty name always create one without a name.
    OpenedObject Create(const char* name, ObjectKind kind, std::uint64_t size);
    void Close(HANDLE handle);

    DWORD Wait(HANDLE mutex, DWORD milliseconds);
    void Release(HANDLE mutex);

    void* Map(HANDLE memory, bool isWritable, std::size_t size);
    void Unmap(const void* view);

private:
    ObjectTable();
    OpenedObject OpenNamed(const char* name, ObjectKind kind, std::uint64_t size, Missing missing);
    HANDLE NewHandle(NamedObject& object);
    NamedObject& ObjectOf(HANDLE handle, ObjectKind kind) const;

    ForkSafeLock m_lock;  // of everything below
    ObjectNames m_names;
    std::map<std::uintptr_t, NamedObject*> m_handles;
    std::map<const void*, std::size_t> m_views;  // with their lengths
    std::uintptr_t m_lastHandle = 0;
};

}  // namespace qel
