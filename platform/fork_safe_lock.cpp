#include "qellib10/platform/fork_safe_lock.h"

#include <pthread.h>

#include <new>

namespace qel {

// The handlers that fork calls, and the list of all locks that they go through, the newest first.
struct ForkSafeLock::AtFork {
    static inline std::mutex listLock;
    static inline ForkSafeLock* first = nullptr;

    static void Prepare() {
        listLock.lock();
        for (ForkSafeLock* at = first; at != nullptr; at = at->m_next) at->lock();
    }
    static void InParent() {
        for (ForkSafeLock* at = first; at != nullptr; at = at->m_next) at->unlock();
        listLock.unlock();
    }
    static void InChild() {
        for (ForkSafeLock* at = first; at != nullptr; at = at->m_next) {
            // Its owner is a thread of the parent: it cannot be unlocked here, only made anew.
            new (&at->m_lock) std::recursive_mutex;
            if (at->m_inChild != nullptr) at->m_inChild();
        }
        listLock.unlock();
    }
};

ForkSafeLock::ForkSafeLock(void (*inChild)()) : m_inChild(inChild) {
    static const int registered = ::pthread_atfork(AtFork::Prepare, AtFork::InParent, AtFork::InChild);
    if (registered != 0) throw std::bad_alloc();  // its only failure
    const std::lock_guard guard(AtFork::listLock);
    m_next = AtFork::first;
    AtFork::first = this;
}

}  // namespace qel
