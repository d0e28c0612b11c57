#include "qellib10/platform/registry/open_keys.h"

#include "qellib10/platform/registry/registry_error.h"

namespace qel {
namespace {

// A handle is a multiple of 4 plus the number of its tree, like the handles of the roots.
constexpr std::uintptr_t kStep = 4;
constexpr std::uintptr_t kFirst = 0x1000;
const std::uintptr_t kRoots = reinterpret_cast<std::uintptr_t>(HKEY_CLASSES_ROOT);

std::uintptr_t NumberOf(HKEY handle) { return reinterpret_cast<std::uintptr_t>(handle); }
bool IsRoot(std::uintptr_t number) { return number - number % kStep == kRoots; }

}  // namespace

RegistryRoot RootOf(HKEY handle) {
    const std::uintptr_t root = NumberOf(handle) % kStep;
    if (handle == nullptr || root >= kRegistryRoots) throw RegistryError(kRegistryBadHandle);
    return static_cast<RegistryRoot>(root);
}

OpenKeys::OpenKeys(RegistryRoot root) : m_last(kFirst + static_cast<std::uintptr_t>(root)) {
    m_keys.emplace(kRoots + static_cast<std::uintptr_t>(root), kRegistryRootKey);
}

HKEY OpenKeys::Add(RegistryKeyId key) {
    m_last += kStep;
    if (IsRoot(m_last)) m_last += kStep;
    m_keys.emplace(m_last, key);
    return reinterpret_cast<HKEY>(m_last);
}

RegistryKeyId OpenKeys::Find(HKEY handle) const {
    const auto found = m_keys.find(NumberOf(handle));
    if (found == m_keys.end()) throw RegistryError(kRegistryBadHandle);
    return found->second;
}

void OpenKeys::Remove(HKEY handle) {
    if (IsRoot(NumberOf(handle))) return;
    if (m_keys.erase(NumberOf(handle)) == 0) throw RegistryError(kRegistryBadHandle);
}

}  // namespace qel
