#include "qellib10/platform/archive/object.h"

#include <algorithm>
#include <mutex>
#include <vector>

namespace {

struct Registry {
    std::mutex mutex;
    std::vector<const CRuntimeClass*> classes;  // in order of registration
};

Registry& TheRegistry() {
    static Registry registry;  // created by the first registration, so it outlives all of them
    return registry;
}

}  // namespace

CObject* CRuntimeClass::CreateObject() const { return m_pfnCreateObject != nullptr ? m_pfnCreateObject() : nullptr; }

bool CRuntimeClass::IsDerivedFrom(const CRuntimeClass* base) const noexcept {
    for (const CRuntimeClass* at = this; at != nullptr; at = at->m_pBaseClass)
        if (at == base) return true;
    return false;
}

const CRuntimeClass* CRuntimeClass::FromName(std::string_view name) {
    Registry& registry = TheRegistry();
    const std::scoped_lock lock(registry.mutex);
    const auto found = std::ranges::find(registry.classes, name, &CRuntimeClass::m_lpszClassName);
    return found != registry.classes.end() ? *found : nullptr;
}

const CRuntimeClass* CObject::GetThisClass() {
    static const CRuntimeClass theClass{"CObject", static_cast<int>(sizeof(CObject)), 0, nullptr, nullptr};
    return &theClass;
}

const CRuntimeClass* CObject::GetRuntimeClass() const { return GetThisClass(); }
CObject::~CObject() = default;
void CObject::Serialize(CArchive&) {}
bool CObject::IsKindOf(const CRuntimeClass* wanted) const noexcept { return GetRuntimeClass()->IsDerivedFrom(wanted); }

namespace qel {

ClassRegistration::ClassRegistration(const CRuntimeClass* registered) : m_pClass(registered) {
    Registry& registry = TheRegistry();
    const std::scoped_lock lock(registry.mutex);
    registry.classes.push_back(m_pClass);
}

ClassRegistration::~ClassRegistration() {
    Registry& registry = TheRegistry();
    const std::scoped_lock lock(registry.mutex);
    const auto found = std::ranges::find(registry.classes, m_pClass);
    if (found != registry.classes.end()) registry.classes.erase(found);
}

}  // namespace qel
