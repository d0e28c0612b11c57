#include "qellib10/user/system_setting.h"

#include <gtest/gtest.h>

#include <string>

#include "../support/registry_scope.h"
#include "qellib10/file/private_profile.h"
#include "qellib10/file/q_file.h"

namespace {

// Knows one user, "ann" with the password "pw" and a right to function 1, and notes what it is asked.
class Store : public CClassAgentConnectInterface {
public:
    void Connect() override { Note("connect"), connected = 1; }
    int IsConnected() override { return connected; }
    int LogonWithDialog() override { return Note("dialog"), dialogAnswer; }
    int Logon(const CString& username, const CString& password) override {
        return Note("logon"), username == "ann" && password == "pw" ? 7 : 0;
    }
    void GetLogonUser(CUserInfo* out) override {
        CFunctionSecurity security;
        security.AddFunctionInfo(CFunctionInfo(1, "", 3));
        out->SetSecurity(security);
        out->SetMakerFlag(maker);
    }
    CString GetLogonUsername() override { return "ann"; }
    int IsAutoLogon() override { return 14; }
    int SetAutoLogon(int autoLogon) override { return autoLogon + 15; }
    CString GetAutoLogonUserName() override { return "16"; }
    CString GetAutoLogonPassword() override { return "17"; }
    int SetAutoLogonUser(const CString& username) override { return username == "ann" ? 18 : 0; }
    int GetUserInfo(const CString& username, CUserInfo* out) override { return out->SetUsername(username), 19; }
    int ReloadUserList() override { return 22; }
    int GetUserCount() override { return 23; }
    CString GetUserName(int index) override { return CString('u', index); }
    int SaveFunctionSecurity(const CUserInfo& user) override { return user.GetUserID() + 25; }
    int AddUser(const CUserInfo& user) override { return user.GetUserID() + 26; }
    int DeleteUser(const CString& username) override { return username == "ann" ? 28 : 0; }

    std::string asked;
    int connected = 0, dialogAnswer = 0, maker = 0;

private:
    void Note(const char* what) { asked += std::string(what) + ' '; }
};

std::string Rights(const CSystemSetting& setting) {
    std::string text = std::to_string(setting.IsLogon()) + ':';
    for (const int right : {setting.GetLogonUserSecurityLevel(1), setting.GetLogonUserSecurityLevel(2),
                            setting.GetLogonUserManagerFlag(), setting.GetLogonUserMakerFlag()}) {
        text += ' ' + std::to_string(right);
    }
    return text;
}

constexpr const char* kNobody = "0: -1 -1 -1 -1";

}  // namespace

TEST(SystemSetting, AFailedLogonEndsTheOneBefore) {
    Store store;
    CSystemSetting setting(&store);
    EXPECT_EQ(Rights(setting), kNobody);
    EXPECT_EQ(setting.LogonWithoutDialog("ann", "pw"), 1);
    const CSystemSetting copy = setting;
    EXPECT_EQ(Rights(setting), "1: 3 -1 0 0");
    EXPECT_EQ(setting.LogonWithoutDialog("ann", nullptr), 0);
    EXPECT_EQ(Rights(setting), kNobody);
    EXPECT_EQ(store.asked, "connect logon logon ");

    store.dialogAnswer = 2;
    store.maker = 1;
    EXPECT_EQ(setting.LogonWithDialog(), 1);
    EXPECT_EQ(Rights(setting), "1: 1 1 1 1");
    store.dialogAnswer = 0;
    EXPECT_EQ(setting.LogonWithDialog(), 0);
    EXPECT_EQ(Rights(setting), kNobody);
    EXPECT_EQ(setting.LogonWithoutDialog("ann", "pw"), 1);
    setting.Logoff();
    EXPECT_EQ(Rights(setting), kNobody);
    EXPECT_EQ(Rights(copy), "1: 3 -1 0 0");  // as at its logon
}

TEST(SystemSetting, AsksTheStore) {
    Store store;
    for (CClassAgentConnectInterface* const connect : {static_cast<Store*>(nullptr), &store}) {
        const auto answer = [&](int withStore) { return connect != nullptr ? withStore : 0; };
        const auto text = [&](const char* withStore) { return connect != nullptr ? withStore : ""; };
        CSystemSetting setting(connect);
        CUserInfo user;
        EXPECT_EQ(setting.GetConnectInterface(), connect);
        EXPECT_EQ(setting.IsAutoLogon(), answer(14));
        EXPECT_EQ(setting.SetAutoLogon(5), answer(20));
        EXPECT_EQ(setting.GetAutoLogonUserName(), text("16"));
        EXPECT_EQ(setting.GetAutoLogonPassword(), text("17"));
        EXPECT_EQ(setting.SetAutoLogonUser("ann"), answer(18));
        EXPECT_EQ(setting.GetUserInfo("bob", &user), answer(19));
        EXPECT_EQ(user.GetUsername(), text("bob"));
        EXPECT_EQ(setting.GetUserInfo("bob", nullptr), 0);
        EXPECT_EQ(setting.ReloadUserList(), answer(22));
        EXPECT_EQ(setting.GetUserCount(), connect != nullptr ? 23 : -1);
        EXPECT_EQ(setting.GetUserName(2), text("uu"));
        user.SetUserID(100);
        EXPECT_EQ(setting.SaveFunctionSecurity(user), answer(125));
        EXPECT_EQ(setting.AddUserInfo(user), answer(126));
        EXPECT_EQ(setting.DeleteUserInfo("ann"), answer(28));
        EXPECT_EQ(setting.LogonWithoutDialog("ann", "pw"), answer(1));
        EXPECT_EQ(setting.LogonWithDialog(), 0);
        EXPECT_EQ(Rights(setting), kNobody);
    }
}

TEST(SystemSetting, FindsTheSharedSettingsFile) {
    const RegistryScope registry;
    const CString program = CQFile::GetFolderFromPath(CQFile::GetModuleFilePath(nullptr));
    EXPECT_EQ(CSystemSetting::GetQELSystemIniPath(), program + "\\sysinfo.ini");
    CPrivateProfile common(R"(HKEY_LOCAL_MACHINE\Software\BRANTEL LABWORKS\Common)", CPrivateProfile::registryMode);
    for (const char* const folder : {R"(C:\system)", R"(C:\system\)"}) {
        EXPECT_EQ(common.Set(nullptr, "SystemFolder", folder), 1);
        EXPECT_EQ(CSystemSetting::GetQELSystemIniPath(), R"(C:\system\sysinfo.ini)");
    }
}
