#include "qellib10/platform/sync/mapped_mutex.h"

#include <pthread.h>
#include <sys/mman.h>
#include <time.h>

#include <atomic>
#include <cerrno>
#include <new>
#include <optional>
#include <utility>

#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/sync/named_mutex.h"
#include "qellib10/platform/sync/object_file.h"
#include "qellib10/platform/sync/system_failure.h"
#include "qellib10/platform/sync/thread.h"

namespace qel {
namespace {

int Lock(pthread_mutex_t& mutex, DWORD milliseconds) {
    if (milliseconds == 0) return ::pthread_mutex_trylock(&mutex);
    if (milliseconds == kInfinite) return ::pthread_mutex_lock(&mutex);
    timespec until{};
    ::clock_gettime(CLOCK_MONOTONIC, &until);
    until.tv_sec += milliseconds / 1000;
    until.tv_nsec += static_cast<long>(milliseconds % 1000) * 1'000'000;
    if (until.tv_nsec >= 1'000'000'000) {
        ++until.tv_sec;
        until.tv_nsec -= 1'000'000'000;
    }
    return ::pthread_mutex_clocklock(&mutex, CLOCK_MONOTONIC, &until);
}

}  // namespace

struct MappedMutex::Page {
    char header[kMutexOffset];
    pthread_mutex_t mutex;
    std::atomic<DWORD> owner;  // a thread's number, 0 when free; outdated once the owner has died
    int depth;                 // the owner's waits that it has not released yet
    // Only under the folder's lock: the last process that had the object has closed it; a process that owned the mutex
    // has closed it.
    bool isClosed, isLeftOwned;
};

MappedMutex::MappedMutex(const Descriptor& file) {
    static_assert(sizeof(Page) <= kBlockOffset);
    void* page = ::mmap(nullptr, sizeof(Page), PROT_READ | PROT_WRITE, MAP_SHARED, file.Get(), 0);
    if (page == MAP_FAILED) throw SystemFailure{CodeOfErrno(errno)};
    m_page = static_cast<Page*>(page);
}

MappedMutex::~MappedMutex() {
    if (m_depth == 0) ::munmap(m_page, sizeof(Page));
}

void MappedMutex::Initialize() {
    pthread_mutexattr_t attributes;
    ::pthread_mutexattr_init(&attributes);
    ::pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
    ::pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
    ::pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    ::pthread_mutex_init(&m_page->mutex, &attributes);
    ::pthread_mutexattr_destroy(&attributes);
}

DWORD MappedMutex::Wait(DWORD milliseconds) {
    DWORD answer = kWaitObject;
    switch (Lock(m_page->mutex, milliseconds)) {
        case 0:
            break;
        case EOWNERDEAD:
            ::pthread_mutex_consistent(&m_page->mutex);
            m_page->depth = 0;
            answer = kWaitAbandoned;
            break;
        case EBUSY:
        case ETIMEDOUT:
            return kWaitTimeout;
        default:
            return kWaitFailed;
    }
    m_page->owner = CurrentThreadId();
    ++m_page->depth;
    return answer;
}

void MappedMutex::CountWait(DWORD answer) {
    if (answer == kWaitAbandoned) m_depth = 1;  // a dead thread of this process may have left its count
    if (answer == kWaitObject) ++m_depth;
}

bool MappedMutex::Release() {
    if (m_page->owner != CurrentThreadId()) return false;
    if (--m_page->depth == 0) m_page->owner = 0;
    if (::pthread_mutex_unlock(&m_page->mutex) != 0) return false;
    if (m_depth > 0) --m_depth;  // waits counted before this process closed the mutex it owned are lost
    return true;
}

bool MappedMutex::Close(bool isLast) {
    if (m_depth != 0) m_page->isLeftOwned = true;
    if (m_page->isLeftOwned) return false;
    if (!isLast) return true;
    const DWORD answer = Wait(0);
    if (answer != kWaitObject && answer != kWaitAbandoned) return false;
    m_page->isClosed = true;
    return Release();
}

void MappedMutex::LoseFile() {
    constexpr int kReplaceMapping = MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED;
    const void* page = ::mmap(m_page, sizeof(Page), PROT_READ | PROT_WRITE, kReplaceMapping, -1, 0);
    if (page == MAP_FAILED) throw SystemFailure{kOutOfMemory};
}

bool MappedMutex::IsOwned() const { return m_page->owner != 0; }

bool MappedMutex::TakeAgain() { return std::exchange(m_page->isClosed, false); }

bool IsLeftOwned(const Descriptor& file) {
    const std::optional<ObjectHeader> header = ReadHeader(file);
    return header && header->kind == ObjectKind::Mutex && MappedMutex(file).IsOwned();
}

}  // namespace qel
