#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "qellib10/platform/text/string.h"

namespace qel {

/// Writes records, followed by what they point to, into a caller's buffer. Without a buffer it only counts.
class RecordBuffer {
public:
    RecordBuffer(BYTE* bytes, DWORD size) : m_pBytes(bytes), m_nSize(bytes != nullptr && IsAligned(bytes) ? size : 0) {}

    /// Space for @p count objects, aligned for pointers; null if it does not fit.
    template <class Object> Object* Take(std::size_t count = 1) {
        static_assert(alignof(Object) <= alignof(void*));
        m_nUsed = (m_nUsed + alignof(Object) - 1) / alignof(Object) * alignof(Object);
        const std::size_t at = m_nUsed;
        m_nUsed += count * sizeof(Object);
        return Fits() ? reinterpret_cast<Object*>(m_pBytes + at) : nullptr;
    }
    char* Text(const CString& text) {
        const auto length = static_cast<std::size_t>(text.GetLength()) + 1;
        char* const target = Take<char>(length);
        if (target != nullptr) std::memcpy(target, static_cast<const char*>(text), length);
        return target;
    }

    bool Fits() const { return m_nUsed <= m_nSize; }
    DWORD Needed() const { return static_cast<DWORD>(m_nUsed); }

private:
    static bool IsAligned(const BYTE* bytes) { return reinterpret_cast<std::uintptr_t>(bytes) % alignof(void*) == 0; }

    BYTE* m_pBytes;
    std::size_t m_nSize;
    std::size_t m_nUsed = 0;
};

}  // namespace qel
