#pragma once

#include <exception>

#include "qellib10/platform/registry/registry.h"

namespace qel {

/// A step of a registry operation failed; the operation returns the code.
class RegistryError : public std::exception {
public:
    explicit RegistryError(RegistryCode code) noexcept : m_code(code) {}
    const char* what() const noexcept override { return "registry operation failed"; }
    RegistryCode Code() const noexcept { return m_code; }

private:
    RegistryCode m_code;
};

}  // namespace qel
