#pragma once

#include <atomic>
#include <mutex>
#include <thread>

#include "qellib10/platform/types.h"

/// Lets one thread of this process at a time in. Its owner may enter again; each entry needs a leave.
class CCriticalSection {
public:
    CCriticalSection() = default;
    CCriticalSection(const CCriticalSection&) = delete;
    CCriticalSection& operator=(const CCriticalSection&) = delete;

    BOOL Lock();
    /// @return 0 for a thread that is not in.
    BOOL Unlock();

private:
    // Not a recursive mutex of the library: the child of a fork could never unlock that.
    std::mutex m_mutex;
    std::atomic<std::thread::id> m_owner;
    int m_depth = 0;
};

namespace qel {

/// In a critical section for the length of a scope.
class SectionLock {
public:
    explicit SectionLock(CCriticalSection& section) : m_section(section) { m_section.Lock(); }
    ~SectionLock() { m_section.Unlock(); }
    SectionLock(const SectionLock&) = delete;
    SectionLock& operator=(const SectionLock&) = delete;

private:
    CCriticalSection& m_section;
};

}  // namespace qel
