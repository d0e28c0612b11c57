#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>

#include "qellib10/platform/fork_safe_lock.h"

namespace qel {

/// Maps handles to entries. A handle is a number that is never used twice, so that a stale one finds nothing. Any
/// thread.
template <class Entry> class HandleTable {
public:
    void* Add(std::shared_ptr<Entry> entry) {
        const std::lock_guard lock(m_lock);
        // Odd, so that no handle can be mistaken for an address.
        m_nLast += 2;
        m_mapEntry.emplace(m_nLast, std::move(entry));
        return reinterpret_cast<void*>(m_nLast);
    }

    std::shared_ptr<Entry> Find(const void* handle) const {
        const std::lock_guard lock(m_lock);
        const auto found = m_mapEntry.find(reinterpret_cast<std::uintptr_t>(handle));
        return found != m_mapEntry.end() ? found->second : nullptr;
    }

    /// Removes the handle; its entry lives on while somebody shares it.
    std::shared_ptr<Entry> Remove(const void* handle) {
        const std::lock_guard lock(m_lock);
        const auto found = m_mapEntry.find(reinterpret_cast<std::uintptr_t>(handle));
        if (found == m_mapEntry.end()) return nullptr;
        std::shared_ptr<Entry> entry = std::move(found->second);
        m_mapEntry.erase(found);
        return entry;
    }

private:
    mutable ForkSafeLock m_lock;
    std::uintptr_t m_nLast = 0x10001;
    std::unordered_map<std::uintptr_t, std::shared_ptr<Entry>> m_mapEntry;
};

}  // namespace qel
