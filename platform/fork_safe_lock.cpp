#include "qellib10/platform/fork_safe_lock.h"

#include <pthread.h>

#include <algorithm>
#include <chrono>
#include <new>
#include <utility>
#include <vector>

namespace qel {
namespace {

// How many locks this thread holds. While it holds one, it waits only for the owner of the next one: others may be
// waiting for what it has.
thread_local int theHeld = 0;

std::atomic<int> theForks = 0;  // waiting for locks; each thread lets them pass, for a moment
std::mutex theFork;             // held by the fork that is in progress

// How often a thread gives way to forks before it continues. A fork that waits for the owner of one lock must not keep
// all others waiting for its end: that owner may be waiting for one of them.
constexpr int kGiveWay = 20;
constexpr std::chrono::milliseconds kMoment(1);
thread_local int theRefusals = 0;  // in a row, by try_lock

void LetForksPass() {
    for (int i = 0; i < kGiveWay && theForks != 0; ++i) std::this_thread::sleep_for(kMoment);
}

bool GivesWay() {
    const bool gives = theHeld == 0 && theForks != 0 && theRefusals < kGiveWay;
    theRefusals = gives ? theRefusals + 1 : 0;
    return gives;
}

}  // namespace

void ForkSafeLock::Own() {
    m_owner.store(std::this_thread::get_id(), std::memory_order_relaxed);
    m_depth = 1;
    ++theHeld;
}

void ForkSafeLock::TakeNow() {
    if (IsMine()) {
        ++m_depth;
    } else {
        m_lock.lock();
        Own();
    }
}

bool ForkSafeLock::TryTakeNow() {
    if (IsMine()) {
        ++m_depth;
        return true;
    }
    if (!m_lock.try_lock()) return false;
    Own();
    return true;
}

void ForkSafeLock::TakeInLine() {
    if (m_waiting == 0 && TryTakeNow()) return;
    ++m_waiting;
    const std::lock_guard first(m_door);
    TakeNow();
    --m_waiting;
}

void ForkSafeLock::lock() {
    if (theHeld > 0) return TakeNow();
    TakeInLine();
    if (theForks == 0) return;
    unlock();
    LetForksPass();
    TakeInLine();
}

bool ForkSafeLock::try_lock() { return !GivesWay() && (theHeld > 0 || m_waiting == 0) && TryTakeNow(); }

void ForkSafeLock::unlock() {
    if (!IsMine() || --m_depth > 0) return;
    --theHeld;
    m_owner.store({}, std::memory_order_relaxed);
    m_lock.unlock();
}

// Its owner is a thread of the parent, so it cannot be unlocked here, only constructed again. The thread sanitizer
// takes this thread for the one that locked it, so it must be informed.
void ForkSafeLock::MakeFreeInChild() {
    m_lock.unlock();
    new (&m_lock) std::mutex;
    new (&m_door) std::mutex;
    m_waiting = 0;
    m_owner.store({}, std::memory_order_relaxed);
    m_depth = 0;
    if (m_inChild != nullptr) m_inChild();
}

// The handlers that fork calls, and their data.
struct ForkSafeLock::AtFork {
    std::mutex listLock;  // taken last, until the end of a fork
    std::vector<ForkSafeLock*> all;
    std::vector<ForkSafeLock*> taken;
    bool isInFront = false;  // the forking thread has theFork

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
    // Waits for the threads that have locks, and lets nobody else take one first. A thread that has a lock itself does
    // not wait for another fork, which may be waiting for this lock.
    void Prepare() {
        std::vector<ForkSafeLock*> locks = Known();
        const bool isFirst = theHeld == 0;
        if (isFirst) {
            ++theForks;
            theFork.lock();
        }
        TakeAll(locks);
        listLock.lock();
        taken = std::move(locks);
        isInFront = isFirst;
    }
    void InParent() {
        const std::vector<ForkSafeLock*> locks = std::move(taken);
        const bool wasFirst = isInFront;
        listLock.unlock();
        for (ForkSafeLock* lock : locks) lock->unlock();
        if (!wasFirst) return;
        --theForks;
        theFork.unlock();
    }
    void InChild() {
        const std::vector<ForkSafeLock*> locks = std::move(taken);
        listLock.unlock();
        for (ForkSafeLock* lock : locks) lock->MakeFreeInChild();
        if (isInFront) theFork.unlock();
        new (&theFork) std::mutex;
        theForks = 0;
        theHeld = 0;
    }

    // Waits for one lock only while it holds no other that it took itself, so that threads may hold several in any
    // order.
    static void TakeAll(std::vector<ForkSafeLock*>& locks) {
        for (auto blocked = locks.begin(); blocked != locks.end();) {
            std::rotate(locks.begin(), blocked, blocked + 1);
            locks.front()->TakeNow();
            blocked = std::find_if_not(locks.begin() + 1, locks.end(), [](auto* lock) { return lock->TryTakeNow(); });
            if (blocked != locks.end()) std::for_each(locks.begin(), blocked, [](auto* lock) { lock->unlock(); });
        }
    }
};

ForkSafeLock::ForkSafeLock(void (*inChild)()) : m_inChild(inChild) { AtFork::Instance().Add(this); }

}  // namespace qel
