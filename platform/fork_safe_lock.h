#pragma once

#include <atomic>
#include <mutex>
#include <thread>

#include "qellib10/platform/export.h"

namespace qel {

/// A recursive lock for data that all threads of the process share. A forked child finds it free: fork waits until no
/// other thread holds it. A thread that takes it again and again does not block the others or a fork for long: it lets
/// them pass, a fork for at most about 20 ms, because the owner that the fork waits for may wait for this thread. It
/// must live to the end of the process: create it with `new`, in a function-local static.
class QELLIB10_INTERNAL_API ForkSafeLock {
public:
    /// @param inChild called in each forked child before fork returns there; may be null
    explicit ForkSafeLock(void (*inChild)() = nullptr);
    ForkSafeLock(const ForkSafeLock&) = delete;
    ForkSafeLock& operator=(const ForkSafeLock&) = delete;

    void lock();
    bool try_lock();
    /// Does nothing in a child that was forked while its thread held the lock: there the lock is already free.
    void unlock();

private:
    struct AtFork;

    bool IsMine() const { return m_owner.load(std::memory_order_relaxed) == std::this_thread::get_id(); }
    void Own();
    void TakeNow();  // without letting waiting threads go first
    bool TryTakeNow();
    void TakeInLine();
    void MakeFreeInChild();

    std::mutex m_lock;
    std::mutex m_door;                          // held while waiting for the lock, so that only one thread waits there
    std::atomic<int> m_waiting = 0;             // at the door: others then go there too, even if the lock is free
    std::atomic<std::thread::id> m_owner = {};  // of the lock
    int m_depth = 0;                            // how many times its owner holds it
    void (*m_inChild)();
};

}  // namespace qel
