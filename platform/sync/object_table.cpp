#include "qellib10/platform/sync/object_table.h"

#include <sys/mman.h>

#include <chrono>
#include <cstdlib>
#include <mutex>
#include <new>
#include <thread>

#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/sync/named_mutex.h"
#include "qellib10/platform/sync/object_name.h"
#include "qellib10/platform/sync/system_failure.h"

namespace qel {
namespace {

// How long a process may take to die while it creates or closes an object.
constexpr int kMaxTurns = 1000;
constexpr std::chrono::milliseconds kTurn{1};

constexpr std::uintptr_t kHandleStep = 4;

std::uintptr_t ValueOf(HANDLE handle) { return reinterpret_cast<std::uintptr_t>(handle); }

}  // namespace

ObjectTable& ObjectTable::Get() {
    static ObjectTable& table = *new ObjectTable;
    return table;
}

namespace {

// Created at load, so that no thread is creating it while another forks.
[[maybe_unused]] const ObjectTable& theTableIsMadeAtLoad = ObjectTable::Get();

}  // namespace

ObjectTable::ObjectTable()
    : m_lock([] {
          Get().m_handles.clear();
          Get().m_names.Forget();
      }) {
    std::atexit([] {
        const std::lock_guard lock(Get().m_lock);
        Get().m_names.Exit();
    });
}

HANDLE ObjectTable::Open(const char* name, ObjectKind kind) {
    if (name == nullptr) throw SystemFailure{kBadParameter};
    return OpenNamed(name, kind, 0, Missing::Fails).handle;
}

OpenedObject ObjectTable::Create(const char* name, ObjectKind kind, std::uint64_t size) {
    if (name != nullptr && *name != '\0') return OpenNamed(name, kind, size, Missing::IsMade);
    const std::lock_guard lock(m_lock);
    return {NewHandle(m_names.UseNameless(kind, size)), false};
}

OpenedObject ObjectTable::OpenNamed(const char* name, ObjectKind kind, std::uint64_t size, Missing missing) {
    const std::string_view objectName = ObjectName(name);
    for (int turn = 0; turn < kMaxTurns; ++turn) {
        {
            const std::lock_guard lock(m_lock);
            const ObjectNames::Found found = m_names.Use(objectName, kind, size, missing);
            if (found.object != nullptr) return {NewHandle(*found.object), found.existed, found.wasLeftOwned};
        }
        std::this_thread::sleep_for(kTurn);
    }
    throw SystemFailure{kFileAltered};  // no process is dying, so the object itself is broken
}

void ObjectTable::Close(HANDLE handle) {
    const std::lock_guard lock(m_lock);
    const auto entry = m_handles.find(ValueOf(handle));
    if (entry == m_handles.end()) throw SystemFailure{kBadHandle};
    NamedObject& object = *entry->second;
    m_handles.erase(entry);
    m_names.Leave(object);
}

DWORD ObjectTable::Wait(HANDLE mutex, DWORD milliseconds) {
    std::unique_lock lock(m_lock);
    NamedObject& object = ObjectOf(mutex, ObjectKind::Mutex);
    object.CheckIsWhole();
    DWORD answer = object.mutex->Wait(0);
    if (answer == kWaitTimeout && milliseconds != 0) {
        ++object.users;  // the handle may be closed meanwhile
        lock.unlock();
        answer = object.mutex->Wait(milliseconds);
        lock.lock();
        object.mutex->CountWait(answer);
        m_names.Leave(object);
    } else {
        object.mutex->CountWait(answer);
    }
    if (answer == kWaitFailed) throw SystemFailure{kGeneralFailure};
    return answer;
}

void ObjectTable::Release(HANDLE mutex) {
    const std::lock_guard lock(m_lock);
    NamedObject& object = ObjectOf(mutex, ObjectKind::Mutex);
    object.CheckIsWhole();
    if (!object.mutex->Release()) throw SystemFailure{kNotOwner};
}

void* ObjectTable::Map(HANDLE memory, bool isWritable, std::size_t size) {
    const std::lock_guard lock(m_lock);
    const NamedObject& object = ObjectOf(memory, ObjectKind::Memory);
    if (size > object.size) throw SystemFailure{kAccessDenied};
    object.CheckIsWhole();
    if (size == 0) size = object.size;
    const int access = isWritable ? PROT_READ | PROT_WRITE : PROT_READ;
    void* view = ::mmap(nullptr, size, access, MAP_SHARED, object.file.Get(), kBlockOffset);
    if (view == MAP_FAILED) throw SystemFailure{kOutOfMemory};
    try {
        m_views[view] = size;
    } catch (const std::bad_alloc&) {
        ::munmap(view, size);
        throw;
    }
    return view;
}

void ObjectTable::Unmap(const void* view) {
    const std::lock_guard lock(m_lock);
    const auto entry = m_views.find(view);
    if (entry == m_views.end()) throw SystemFailure{kBadAddress};
    ::munmap(const_cast<void*>(view), entry->second);
    m_views.erase(entry);
}

HANDLE ObjectTable::NewHandle(NamedObject& object) {
    ++object.users;
    try {
        m_handles[m_lastHandle += kHandleStep] = &object;
    } catch (const std::bad_alloc&) {
        m_names.Leave(object);  // or this process would have the name, and no handle to give it up
        throw;
    }
    return reinterpret_cast<HANDLE>(m_lastHandle);
}

NamedObject& ObjectTable::ObjectOf(HANDLE handle, ObjectKind kind) const {
    const auto entry = m_handles.find(ValueOf(handle));
    if (entry == m_handles.end() || entry->second->kind != kind) throw SystemFailure{kBadHandle};
    return *entry->second;
}

}  // namespace qel
