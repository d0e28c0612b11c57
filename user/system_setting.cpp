#include "qellib10/user/system_setting.h"

#include "qellib10/file/private_profile.h"
#include "qellib10/file/q_file.h"
#include "qellib10/platform/operation.h"

namespace {

// What the store returns for a question, or without a store @p otherwise. Any result may be right: only a failure that
// the store has reported itself is one.
template <class Result, class Question>
Result Asked(const char* name, CClassAgentConnectInterface* store, Result otherwise, Question question) {
    qel::Operation running(name);
    if (store == nullptr) {
        running.Failed(qel::FailureKind::kState, "", "no connection to a user store");
        return otherwise;
    }
    running.Ended(true);  // until the store says something else
    Result result = question(*store);
    running.TakeOver();
    return result;
}

// The same for a request; a store that returns @p failed has failed, whether it says why or not.
template <class Result, class Request>
Result Passed(const char* name, CClassAgentConnectInterface* store, Result failed, Request request) {
    qel::Operation running(name);
    Result result = Asked(nullptr, store, failed, request);
    running.Ended(result != failed);
    return result;
}

}  // namespace

CSystemSetting::CSystemSetting(CClassAgentConnectInterface* connect) { Initialize(connect); }

CSystemSetting::~CSystemSetting() = default;

int CSystemSetting::IsAutoLogon() {
    return Asked("CSystemSetting::IsAutoLogon", m_pConnect, 0, [&](auto& store) { return store.IsAutoLogon(); });
}

int CSystemSetting::SetAutoLogon(int autoLogon) {
    return Passed("CSystemSetting::SetAutoLogon", m_pConnect, 0,
                  [&](auto& store) { return store.SetAutoLogon(autoLogon); });
}

CString CSystemSetting::GetAutoLogonUserName() {
    return Asked("CSystemSetting::GetAutoLogonUserName", m_pConnect, CString(),
                 [&](auto& store) { return store.GetAutoLogonUserName(); });
}

CString CSystemSetting::GetAutoLogonPassword() {
    return Asked("CSystemSetting::GetAutoLogonPassword", m_pConnect, CString(),
                 [&](auto& store) { return store.GetAutoLogonPassword(); });
}

int CSystemSetting::SetAutoLogonUser(const CString& username) {
    return Passed("CSystemSetting::SetAutoLogonUser", m_pConnect, 0,
                  [&](auto& store) { return store.SetAutoLogonUser(username); });
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
    return Passed("CSystemSetting::LogonWithDialog", m_pConnect, 0, [&](auto& store) {
        ConnectIfNeeded();
        if (store.LogonWithDialog() == 0) {
            Logoff();
            return 0;
        }
        SetLoginUserName(store.GetLogonUsername());
        return 1;
    });
}

int CSystemSetting::LogonWithoutDialog(const CString& username, const CString& password) {
    return Passed("CSystemSetting::LogonWithoutDialog", m_pConnect, 0, [&](auto& store) {
        ConnectIfNeeded();
        if (store.Logon(username, password) == 0) {
            Logoff();
            return 0;
        }
        SetLoginUserName(username);
        return 1;
    });
}

int CSystemSetting::IsLogon() const { return m_nLogon != 0 ? 1 : 0; }

void CSystemSetting::Logoff() { SetLoginUserName(nullptr); }

int CSystemSetting::GetLogonUserSecurityLevel(int functionID) const {
    return m_nLogon != 0 ? m_LogonUser.GetFunctionSecurity(functionID) : -1;
}

int CSystemSetting::GetLogonUserManagerFlag() const { return m_nLogon != 0 ? m_LogonUser.GetManagerFlag() : -1; }

int CSystemSetting::GetLogonUserMakerFlag() const { return m_nLogon != 0 ? m_LogonUser.GetMakerFlag() : -1; }

int CSystemSetting::GetUserInfo(const CString& username, CUserInfo* out) const {
    return Passed("CSystemSetting::GetUserInfo", m_pConnect, 0, [&](auto& store) {
        return out != nullptr ? store.GetUserInfo(username, out) : qel::RefuseNull(nullptr);
    });
}

int CSystemSetting::ReloadUserList() {
    return Passed("CSystemSetting::ReloadUserList", m_pConnect, 0, [&](auto& store) { return store.ReloadUserList(); });
}

int CSystemSetting::GetUserCount() const {
    return Passed("CSystemSetting::GetUserCount", m_pConnect, -1, [&](auto& store) { return store.GetUserCount(); });
}

CString CSystemSetting::GetUserName(int index) const {
    return Passed("CSystemSetting::GetUserName", m_pConnect, CString(),
                  [&](auto& store) { return store.GetUserName(index); });
}

int CSystemSetting::SaveFunctionSecurity(const CUserInfo& user) {
    return Passed("CSystemSetting::SaveFunctionSecurity", m_pConnect, 0,
                  [&](auto& store) { return store.SaveFunctionSecurity(user); });
}

int CSystemSetting::AddUserInfo(const CUserInfo& user) {
    return Passed("CSystemSetting::AddUserInfo", m_pConnect, 0, [&](auto& store) { return store.AddUser(user); });
}

int CSystemSetting::DeleteUserInfo(const CString& username) {
    return Passed("CSystemSetting::DeleteUserInfo", m_pConnect, 0,
                  [&](auto& store) { return store.DeleteUser(username); });
}

CString CSystemSetting::GetQELSystemIniPath() {
    qel::Operation running("CSystemSetting::GetQELSystemIniPath");
    const CPrivateProfile common(R"(HKEY_LOCAL_MACHINE\Software\BRANTEL LABWORKS\Common)",
                                 CPrivateProfile::registryMode);
    CString folder = common.Get(nullptr, "SystemFolder", "");
    if (folder.IsEmpty()) folder = CQFile::GetFolderFromPath(CQFile::GetModuleIniFile(nullptr));
    CString path = CQFile::BuildFilePath(folder, "sysinfo.ini");
    running.Ended(true);
    return path;
}
