#include "qellib10/user/system_setting.h"

#include "qellib10/file/private_profile.h"
#include "qellib10/file/q_file.h"
#include "qellib10/platform/operation.h"

namespace {

// Whether there is somebody to ask; else the operation's failure says that there is not.
bool Has(const CClassAgentConnectInterface* connection, const char* operation) {
    if (connection != nullptr) return true;
    qel::Operation(operation).Failed(qel::FailureKind::kState, "", "no connection to a user store");
    return false;
}

}  // namespace

CSystemSetting::CSystemSetting(CClassAgentConnectInterface* connect) { Initialize(connect); }

CSystemSetting::~CSystemSetting() = default;

int CSystemSetting::IsAutoLogon() {
    return Has(m_pConnect, "CSystemSetting::IsAutoLogon") ? m_pConnect->IsAutoLogon() : 0;
}

int CSystemSetting::SetAutoLogon(int autoLogon) {
    return Has(m_pConnect, "CSystemSetting::SetAutoLogon") ? m_pConnect->SetAutoLogon(autoLogon) : 0;
}

CString CSystemSetting::GetAutoLogonUserName() {
    return Has(m_pConnect, "CSystemSetting::GetAutoLogonUserName") ? m_pConnect->GetAutoLogonUserName() : CString();
}

CString CSystemSetting::GetAutoLogonPassword() {
    return Has(m_pConnect, "CSystemSetting::GetAutoLogonPassword") ? m_pConnect->GetAutoLogonPassword() : CString();
}

int CSystemSetting::SetAutoLogonUser(const CString& username) {
    return Has(m_pConnect, "CSystemSetting::SetAutoLogonUser") ? m_pConnect->SetAutoLogonUser(username) : 0;
}

int CSystemSetting::SetLoginUserName(const char* name) {
    // Nothing of the former user may stay, whatever the store fills in.
    m_nLogon = 0;
    m_LogonUser = CUserInfo();
    if (name == nullptr) return 1;
    if (m_pConnect != nullptr) m_pConnect->GetLogonUser(&m_LogonUser);
    m_nLogon = 1;
    return 1;
}

void CSystemSetting::Initialize(CClassAgentConnectInterface* connect) {
    m_pConnect = connect;
    m_nLogon = 0;
    m_LogonUser = CUserInfo();
}

void CSystemSetting::ConnectIfNeeded() {
    if (m_pConnect->IsConnected() == 0) m_pConnect->Connect();
}

int CSystemSetting::LogonWithDialog() {
    if (!Has(m_pConnect, "CSystemSetting::LogonWithDialog")) return 0;
    ConnectIfNeeded();
    if (m_pConnect->LogonWithDialog() == 0) {
        Logoff();
        return 0;
    }
    SetLoginUserName(m_pConnect->GetLogonUsername());
    return 1;
}

int CSystemSetting::LogonWithoutDialog(const CString& username, const CString& password) {
    if (!Has(m_pConnect, "CSystemSetting::LogonWithoutDialog")) return 0;
    ConnectIfNeeded();
    if (m_pConnect->Logon(username, password) == 0) {
        Logoff();
        return 0;
    }
    SetLoginUserName(username);
    return 1;
}

int CSystemSetting::IsLogon() const { return m_nLogon != 0 ? 1 : 0; }

void CSystemSetting::Logoff() { SetLoginUserName(nullptr); }

int CSystemSetting::GetLogonUserSecurityLevel(int functionID) const {
    return m_nLogon != 0 ? m_LogonUser.GetFunctionSecurity(functionID) : -1;
}

int CSystemSetting::GetLogonUserManagerFlag() const { return m_nLogon != 0 ? m_LogonUser.GetManagerFlag() : -1; }

int CSystemSetting::GetLogonUserMakerFlag() const { return m_nLogon != 0 ? m_LogonUser.GetMakerFlag() : -1; }

int CSystemSetting::GetUserInfo(const CString& username, CUserInfo* out) const {
    constexpr const char* kOperation = "CSystemSetting::GetUserInfo";
    if (!Has(m_pConnect, kOperation)) return 0;
    return out != nullptr ? m_pConnect->GetUserInfo(username, out) : qel::RefuseNull(kOperation);
}

int CSystemSetting::ReloadUserList() {
    return Has(m_pConnect, "CSystemSetting::ReloadUserList") ? m_pConnect->ReloadUserList() : 0;
}

int CSystemSetting::GetUserCount() const {
    return Has(m_pConnect, "CSystemSetting::GetUserCount") ? m_pConnect->GetUserCount() : -1;
}

CString CSystemSetting::GetUserName(int index) const {
    return Has(m_pConnect, "CSystemSetting::GetUserName") ? m_pConnect->GetUserName(index) : CString();
}

int CSystemSetting::SaveFunctionSecurity(const CUserInfo& user) {
    return Has(m_pConnect, "CSystemSetting::SaveFunctionSecurity") ? m_pConnect->SaveFunctionSecurity(user) : 0;
}

int CSystemSetting::AddUserInfo(const CUserInfo& user) {
    return Has(m_pConnect, "CSystemSetting::AddUserInfo") ? m_pConnect->AddUser(user) : 0;
}

int CSystemSetting::DeleteUserInfo(const CString& username) {
    return Has(m_pConnect, "CSystemSetting::DeleteUserInfo") ? m_pConnect->DeleteUser(username) : 0;
}

CString CSystemSetting::GetQELSystemIniPath() {
    const CPrivateProfile common(R"(HKEY_LOCAL_MACHINE\Software\BRANTEL LABWORKS\Common)",
                                 CPrivateProfile::registryMode);
    CString folder = common.Get(nullptr, "SystemFolder", "");
    if (folder.IsEmpty()) folder = CQFile::GetFolderFromPath(CQFile::GetModuleIniFile(nullptr));
    return CQFile::BuildFilePath(folder, "sysinfo.ini");
}
