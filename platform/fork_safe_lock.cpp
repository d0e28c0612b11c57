#include "qellib10/platform/fork_safe_lock.h"

#include <pthread.h>

#include <algorithm>
#include <new>
#include <vector>

namespace qel {

// The handlers that fork calls, and what they work on.
struct ForkSafeLock::AtFork {
    std::mutex listLock;  // taken last of all
    std::vector<ForkSafeLock*> all;
    std::mutex forking;  // from Prepare to the end of the fork, taken first
    std::vector<ForkSafeLock*> taken;

    static AtFork& Instance() {
        static AtFork& instance = *new AtFork;
        return instance;
    }

    AtFork() {
        const auto prepare = [] { Instance().Prepare(); };
        const auto inParent = [] { Instance().InParent(); };
        const auto inChild = [] { Instance().InChild(); };
        if (::pthread_atfork(prepare, inParent, inChild) != 0) throw std::bad_alloc();  // its only failure
    }

    void Add(ForkSafeLock* lock) {
        const std::lock_guard guard(listLock);
        all.insert(std::ranges::upper_bound(all, lock->m_order, {}, &ForkSafeLock::m_order), lock);
    }
    void Prepare() {
        forking.lock();
        {
            const std::lock_guard guard(listLock);
            taken = all;
        }
        for (ForkSafeLock* lock : taken) lock->lock();
        listLock.lock();
    }
    void InParent() {
        listLock.unlock();
        for (ForkSafeLock* lock : taken) lock->unlock();
        forking.unlock();
    }
    void InChild() {
        listLock.unlock();
        for (ForkSafeLock* lock : taken) {
            // Its owner is a thread of the parent: it cannot be unlocked here, only made anew.
            new (&lock->m_lock) std::recursive_mutex;
            if (lock->m_inChild != nullptr) lock->m_inChild();
        }
        forking.unlock();
    }
};

ForkSafeLock::ForkSafeLock(int order, void (*inChild)()) : m_order(order), m_inChild(inChild) {
    AtFork::Instance().Add(this);
}

}  // namespace qel
