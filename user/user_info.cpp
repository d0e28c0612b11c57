#include "qellib10/user/user_info.h"

CUserInfo::~CUserInfo() = default;

void CUserInfo::Initialize() {
    m_szUsername.Empty();
    m_szUserFullname.Empty();
    m_szPassword.Empty();
    m_Security.Initialize();
}

int CUserInfo::SetFunctionSecurity(int functionID, int securityLevel) {
    return m_Security.SetFunctionSecurity(functionID, securityLevel);
}

void CUserInfo::SetMakerFlag(int maker) { m_Security.SetMakerParameter(maker); }

void CUserInfo::SetManagerFlag(int manager) { m_Security.SetManagerParameter(manager); }
