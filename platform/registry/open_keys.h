#pragma once

#include <cstdint>
#include <unordered_map>

#include "qellib10/platform/registry/registry.h"
#include "qellib10/platform/registry/registry_location.h"
#include "qellib10/platform/registry/registry_tree.h"

namespace qel {

/// The tree that a handle belongs to. @throws RegistryError 6 if it cannot be a handle
RegistryRoot RootOf(HKEY handle);

/// The open keys of one tree, including its root. A handle contains its tree, and is never used again.
class OpenKeys {
public:
    explicit OpenKeys(RegistryRoot root);

    HKEY Add(RegistryKeyId key);
    /// @throws RegistryError 6, like Remove
    RegistryKeyId Find(HKEY handle) const;
    void Remove(HKEY handle);

private:
    std::uintptr_t m_last;
    std::unordered_map<std::uintptr_t, RegistryKeyId> m_keys;
};

}  // namespace qel
