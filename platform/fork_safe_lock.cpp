#include "qellib10/platform/fork_safe_lock.h"

#include <pthread.h>

#include <algorithm>
#include <new>
#include <utility>
#include <vector>

namespace qel {

// The handlers that fork calls, and what they work on.
struct ForkSafeLock::AtFork {
    std::mutex listLock;  // taken last of all, to the end of a fork
    std::vector<ForkSafeLock*> all;
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
        all.push_back(lock);
    }
    std::vector<ForkSafeLock*> Known() {
        const std::lock_guard guard(listLock);
        return all;
    }
    void Prepare() {
        std::vector<ForkSafeLock*> locks = Known();
        TakeAll(locks);
        listLock.lock();
        taken = std::move(locks);
    }
    void InParent() {
        const std::vector<ForkSafeLock*> locks = std::move(taken);
        listLock.unlock();
        for (ForkSafeLock* lock : locks) lock->unlock();
    }
    void InChild() {
        const std::vector<ForkSafeLock*> locks = std::move(taken);
        listLock.unlock();
        for (ForkSafeLock* lock : locks) {
            // Its owner is a thread of the parent: it cannot be unlocked here, only made anew. The thread sanitizer, to
            // which this is the thread that took it, has to be told.
            lock->unlock();
            new (&lock->m_lock) std::recursive_mutex;
            if (lock->m_inChild != nullptr) lock->m_inChild();
        }
    }

    // Waits for one lock only while it holds no other that it took, so that threads may hold several in any order.
    static void TakeAll(std::vector<ForkSafeLock*>& locks) {
        for (auto blocked = locks.begin(); blocked != locks.end();) {
            std::rotate(locks.begin(), blocked, blocked + 1);
            locks.front()->lock();
            blocked =
                std::find_if_not(locks.begin() + 1, locks.end(), [](auto* lock) { return lock->m_lock.try_lock(); });
            if (blocked != locks.end()) std::for_each(locks.begin(), blocked, [](auto* lock) { lock->unlock(); });
        }
    }
};

ForkSafeLock::ForkSafeLock(void (*inChild)()) : m_inChild(inChild) { AtFork::Instance().Add(this); }

}  // namespace qel
