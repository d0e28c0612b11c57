#include "qellib10/platform/registry/open_keys.h"

#include <cstdint>
#include <mutex>
#include <unordered_map>

#include "qellib10/platform/fork_safe_lock.h"
#include "qellib10/platform/registry/registry_error.h"

namespace qel {
namespace {

struct Table {
    ForkSafeLock lock;
    std::unordered_map<std::uintptr_t, OpenKey> keys;
    std::uintptr_t last = 0x1000;  // a multiple of 4, as handles are, below those of the roots
};

constexpr std::uintptr_t kStep = 4;

Table& OpenKeys() {
    static Table& table = *new Table;
    return table;
}

std::uintptr_t NumberOf(HKEY handle) { return reinterpret_cast<std::uintptr_t>(handle); }
std::uintptr_t FirstRoot() { return NumberOf(HKEY_CLASSES_ROOT); }
bool IsRoot(HKEY handle) { return NumberOf(handle) - FirstRoot() < std::uintptr_t{kRegistryRoots}; }

}  // namespace

HKEY AddOpenKey(const OpenKey& key) {
    Table& table = OpenKeys();
    const std::lock_guard guard(table.lock);
    do table.last += kStep;
    while (IsRoot(reinterpret_cast<HKEY>(table.last)));
    table.keys.emplace(table.last, key);
    return reinterpret_cast<HKEY>(table.last);
}

OpenKey FindOpenKey(HKEY handle) {
    if (IsRoot(handle)) {
        return {&RegistryStore::Of(static_cast<RegistryRoot>(NumberOf(handle) - FirstRoot())), kRegistryRootKey};
    }
    Table& table = OpenKeys();
    const std::lock_guard guard(table.lock);
    const auto found = table.keys.find(NumberOf(handle));
    if (found == table.keys.end()) throw RegistryError(kRegistryBadHandle);
    return found->second;
}

void RemoveOpenKey(HKEY handle) {
    if (IsRoot(handle)) return;
    Table& table = OpenKeys();
    const std::lock_guard guard(table.lock);
    if (table.keys.erase(NumberOf(handle)) == 0) throw RegistryError(kRegistryBadHandle);
}

}  // namespace qel
