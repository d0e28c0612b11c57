#include "qellib10/platform/sync/critical_section.h"

BOOL CCriticalSection::Lock() {
    const std::thread::id self = std::this_thread::get_id();
    if (m_owner.load(std::memory_order_relaxed) != self) {  // only this thread itself ever stores its own id
        m_mutex.lock();
        m_owner.store(self, std::memory_order_relaxed);
    }
    ++m_depth;
    return 1;
}

BOOL CCriticalSection::Unlock() {
    if (m_owner.load(std::memory_order_relaxed) != std::this_thread::get_id()) return 0;
    if (--m_depth == 0) {
        m_owner.store({}, std::memory_order_relaxed);
        m_mutex.unlock();
    }
    return 1;
}
