#pragma once

#include <optional>

#include "qellib10/platform/registry/registry.h"
#include "qellib10/platform/registry/registry_store.h"

namespace qel {

/// What a handle stands for.
struct OpenKey {
    RegistryStore* store;
    RegistryKeyId key;
};

// The table of all open keys of the process. A handle that was closed is never given out again.
HKEY AddOpenKey(const OpenKey& key);
/// Also for the roots. @throws RegistryError 6
OpenKey FindOpenKey(HKEY handle);
void RemoveOpenKey(HKEY handle);

}  // namespace qel
