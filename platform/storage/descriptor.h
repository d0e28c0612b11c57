#pragma once

#include <utility>

#include "qellib10/platform/export.h"

namespace qel {

/// Owns a file descriptor and closes it. Can be moved, not copied.
class QELLIB10_API Descriptor {
public:
    Descriptor() noexcept = default;
    explicit Descriptor(int number) noexcept : m_number(number) {}
    Descriptor(Descriptor&& other) noexcept : m_number(other.Release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        if (this != &other) Reset(other.Release());
        return *this;
    }
    ~Descriptor() { Reset(); }

    int Get() const noexcept { return m_number; }
    explicit operator bool() const noexcept { return m_number >= 0; }
    int Release() noexcept { return std::exchange(m_number, -1); }
    void Reset(int number = -1) noexcept;

private:
    int m_number = -1;
};

}  // namespace qel
