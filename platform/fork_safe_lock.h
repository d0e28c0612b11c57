#pragma once

#include <atomic>
#include <mutex>
#include <thread>

#include "qellib10/platform/export.h"

namespace qel {

/// A recursive lock for what all threads of the process share. A forked child finds it free: fork waits until no other
/// thread holds it. A thread that takes it again and again keeps neither the others nor a fork waiting for long: it
/// lets them pass, a fork for at most some 20 ms, since the owner that the fork waits for may wait for this thread.
/// Kept to the end of the process: make one by `new`, in a function-local static.
class QELLIB10_INTERNAL_API ForkSafeLock {
public:
    /// @param inChild called in each forked child, before fork returns there; null: nothing is to be done
    explicit ForkSafeLock(void (*inChild)() = nullptr);
    ForkSafeLock(const ForkSafeLock&) = delete;
    ForkSafeLock& operator=(const ForkSafeLock&) = delete;

    void lock();
    bool try_lock();
    /// Does nothing in a child that was forked while its thread held the lock: there it is free already.
    void unlock();

private:
    struct AtFork;

    bool IsMine() const { return m_owner.load(std::memory_order_relaxed) == std::this_thread::get_id(); }
    void Own();
    void TakeNow();  // without regard to others who wait
    bool TryTakeNow();
    void TakeInLine();
    void MakeFreeInChild();

    std::mutex m_lock;
    std::mutex m_door;                          // held while waiting for the lock, so that one waits there
    std::atomic<int> m_waiting = 0;             // at the door: others go there, too, even if the lock is free just now
    std::atomic<std::thread::id> m_owner = {};  // of the lock
    int m_depth = 0;                            // how many times its owner has it
    void (*m_inChild)();
};

}  // namespace qel
