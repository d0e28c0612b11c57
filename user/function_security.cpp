#include "qellib10/user/function_security.h"

#include <algorithm>
#include <iterator>

namespace {

// The first one with that identifier, or null.
template <class Functions> auto* Find(Functions& functions, int functionID) {
    const auto found = std::ranges::find(functions, functionID, &CFunctionInfo::GetFunctionID);
    return found != functions.end() ? &*found : nullptr;
}

}  // namespace

CFunctionSecurity::~CFunctionSecurity() = default;

void CFunctionSecurity::InitializeFunctionInfo() { m_listFunction.clear(); }

int CFunctionSecurity::GetMachineID() { return 0; }

CString CFunctionSecurity::GetMachineName() { return {}; }

void CFunctionSecurity::SetFunctionParameter() {
    if (m_nMakerParameter != 0) m_nManagerParameter = 1;
}

void CFunctionSecurity::SetMakerParameter(int maker) {
    m_nMakerParameter = maker;
    if (maker != 0) m_nPrivileged = 1;
    SetFunctionParameter();
}

void CFunctionSecurity::SetManagerParameter(int manager) {
    m_nManagerParameter = manager;
    if (manager != 0) m_nPrivileged = 1;
    SetFunctionParameter();
}

void CFunctionSecurity::Initialize() {
    InitializeFunctionInfo();
    m_nManagerParameter = 0;
    m_nMakerParameter = 0;
    m_nPrivileged = 0;
    m_nShow = 1;
}

int CFunctionSecurity::AddFunctionInfo(const CFunctionInfo& function) {
    m_listFunction.push_back(function);
    return 1;
}

int CFunctionSecurity::GetFunctionIDCount() const { return static_cast<int>(m_listFunction.size()); }

int CFunctionSecurity::GetFunctionID(int index) const {
    if (index < 0 || index >= GetFunctionIDCount()) return -1;
    return std::next(m_listFunction.begin(), index)->GetFunctionID();
}

CString CFunctionSecurity::GetFunctionName(int functionID) const {
    const CFunctionInfo* const function = Find(m_listFunction, functionID);
    return function != nullptr ? function->GetFunctionName() : CString();
}

int CFunctionSecurity::GetFunctionSecurity(int functionID) const {
    if (m_nMakerParameter != 0 || m_nManagerParameter != 0) return 1;
    const CFunctionInfo* const function = Find(m_listFunction, functionID);
    return function != nullptr ? function->GetSecurityLevel() : -1;
}

int CFunctionSecurity::SetFunctionSecurity(int functionID, int securityLevel) {
    CFunctionInfo* const function = Find(m_listFunction, functionID);
    if (function == nullptr) return 0;
    function->SetSecurityLevel(securityLevel);
    return 1;
}
