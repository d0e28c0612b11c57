// Who may calibrate? Rights by function, asked for after a logon over a user store of the application's.
#include <qellib10/qellib10.h>

#include <cstdio>
#include <map>
#include <string>

namespace {

enum Function { kCalibrate = 100, kDeleteData = 200 };

// The functions of this application, and whether a new user may use them.
class TitratorSecurity : public CFunctionSecurity {
public:
    TitratorSecurity() { Initialize(); }
    void InitializeFunctionInfo() override {
        CFunctionSecurity::InitializeFunctionInfo();
        AddFunctionInfo(CFunctionInfo(kCalibrate, "Calibrate", 1));
        AddFunctionInfo(CFunctionInfo(kDeleteData, "Delete data", 0));
    }
};

// A store in memory. One that keeps hashed passwords in a database is examples/userstore.
class Store : public CClassAgentConnectInterface {
public:
    void Connect() override { m_isConnected = true; }
    int IsConnected() override { return m_isConnected; }
    int LogonWithDialog() override { return 0; }
    int Logon(const CString& name, const CString& password) override {
        const auto user = m_users.find(std::string(name));
        if (user == m_users.end() || !(user->second.GetPassword() == password)) return 0;
        m_logonUser = user->second;
        return 1;
    }
    void GetLogonUser(CUserInfo* out) override { *out = m_logonUser; }
    CString GetLogonUsername() override { return m_logonUser.GetUsername(); }
    int IsAutoLogon() override { return 0; }
    int SetAutoLogon(int) override { return 0; }
    CString GetAutoLogonUserName() override { return ""; }
    CString GetAutoLogonPassword() override { return ""; }
    int SetAutoLogonUser(const CString&) override { return 0; }
    int GetUserInfo(const CString& name, CUserInfo* out) override {
        const auto user = m_users.find(std::string(name));
        if (user == m_users.end()) return 0;
        *out = user->second;
        return 1;
    }
    int ReloadUserList() override { return 1; }
    int GetUserCount() override { return static_cast<int>(m_users.size()); }
    CString GetUserName(int index) override { return std::next(m_users.begin(), index)->second.GetUsername(); }
    int SaveFunctionSecurity(const CUserInfo& user) override { return AddUser(user); }
    int AddUser(const CUserInfo& user) override {
        m_users.insert_or_assign(std::string(user.GetUsername()), user);
        return 1;
    }
    int DeleteUser(const CString& name) override { return m_users.erase(std::string(name)) != 0; }

private:
    bool m_isConnected = false;
    std::map<std::string, CUserInfo> m_users;
    CUserInfo m_logonUser;
};

CUserInfo User(const char* name, const char* password) {
    CUserInfo user;
    user.SetUsername(name);
    user.SetPassword(password);
    user.SetSecurity(TitratorSecurity());
    return user;
}

}  // namespace

int main() {
    Store store;
    CSystemSetting setting(&store);
    setting.AddUserInfo(User("mori", "violet"));
    CUserInfo manager = User("sato", "amber");
    manager.SetManagerFlag(1);
    setting.AddUserInfo(manager);

    const auto tell = [&setting](const char* name) {
        std::printf("%s: calibrate %d, delete data %d\n", name, setting.GetLogonUserSecurityLevel(kCalibrate),
                    setting.GetLogonUserSecurityLevel(kDeleteData));
    };
    tell("nobody");
    for (const auto& [name, password] : {std::pair("mori", "violet"), std::pair("sato", "amber")}) {
        if (!setting.LogonWithoutDialog(name, password)) return 1;
        tell(name);
    }
    std::puts(setting.LogonWithoutDialog("mori", "wrong") ? "logged on" : "refused");
    tell("nobody");
    return 0;
}
