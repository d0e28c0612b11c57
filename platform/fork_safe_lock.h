#pragma once

#include <mutex>

namespace qel {

/// A recursive lock for what all threads of the process share. A forked child finds it free: fork waits until no other
/// thread holds it. Kept to the end of the process: make one by `new`, in a function-local static.
class ForkSafeLock {
public:
    /// @param inChild called in each forked child, before fork returns there; null: nothing is to be done
    explicit ForkSafeLock(void (*inChild)() = nullptr);
    ForkSafeLock(const ForkSafeLock&) = delete;
    ForkSafeLock& operator=(const ForkSafeLock&) = delete;

    void lock() { m_lock.lock(); }
    bool try_lock() { return m_lock.try_lock(); }
    void unlock() { m_lock.unlock(); }

private:
    struct AtFork;

    std::recursive_mutex m_lock;
    void (*m_inChild)();
};

}  // namespace qel
