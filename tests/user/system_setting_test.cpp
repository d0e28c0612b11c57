#include "qellib10/user/system_setting.h"

#include <functional>

#include "../support/registry_scope.h"
#include "../support/test.h"
#include "qellib10/file/private_profile.h"
#include "qellib10/file/q_file.h"
#include "qellib10/platform/failure.h"

namespace {

// Knows one user, "ann" with the password "pw" and level 3 for function 1; else it returns what its slots return.
class Store : public CClassAgentConnectInterface {
public:
    void Connect() override { ++connected; }
    int IsConnected() override { return connected; }
    int LogonWithDialog() override { return dialogAnswer; }
    int Logon(const CString& username, const CString& password) override {
        return username == "ann" && password == "pw" ? 7 : 0;
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

    int connected = 0, dialogAnswer = 0, maker = 0;
};

std::string Rights(const CSystemSetting& setting) {
    return Line({setting.IsLogon(), setting.GetLogonUserSecurityLevel(1), setting.GetLogonUserSecurityLevel(2),
                 setting.GetLogonUserManagerFlag(), setting.GetLogonUserMakerFlag()});
}

constexpr const char* kNobody = "0 -1 -1 -1 -1";

}  // namespace

TEST(SystemSetting, ReportsWhatTheStoreRefusesUnderItsOwnName) {
    Store store;
    CSystemSetting setting(&store);
    for (const auto& [operation, reported] : Cases<std::function<int()>, const char*>{
             {[&] { return setting.LogonWithoutDialog("ann", "no"); }, "CSystemSetting::LogonWithoutDialog"},
             {[&] { return setting.LogonWithoutDialog("ann", "pw"); }, ""},
             {[&] { return setting.LogonWithDialog(); }, "CSystemSetting::LogonWithDialog"},
             {[&] { return setting.GetUserName(0).GetLength(); }, "CSystemSetting::GetUserName"},
             {[&] { return setting.GetUserCount(); }, ""},
             {[&] { return setting.DeleteUserInfo("bob"); }, "CSystemSetting::DeleteUserInfo"},
             {[&] { return setting.IsAutoLogon(); }, ""},
         }) {
        EXPECT_EQ(operation() == 0, *reported != '\0') << reported;
        EXPECT_STREQ(qel::LastFailure().operation, reported);
    }
}

TEST(SystemSetting, AFailedLogonEndsTheOneBefore) {
    Store store;
    CSystemSetting setting(&store);
    EXPECT_EQ(Rights(setting), kNobody);
    EXPECT_EQ(setting.LogonWithoutDialog("ann", "pw"), 1);
    CSystemSetting copy = setting;
    EXPECT_EQ(Rights(setting), "1 3 -1 0 0");
    EXPECT_EQ(setting.LogonWithoutDialog("ann", nullptr), 0);
    EXPECT_EQ(Rights(setting), kNobody);
    EXPECT_EQ(store.connected, 1);

    store.dialogAnswer = 2;
    store.maker = 1;
    EXPECT_EQ(setting.LogonWithDialog(), 1);
    EXPECT_EQ(Rights(setting), "1 1 1 1 1");
    store.dialogAnswer = 0;
    EXPECT_EQ(setting.LogonWithDialog(), 0);
    EXPECT_EQ(Rights(setting), kNobody);
    EXPECT_EQ(Rights(copy), "1 3 -1 0 0");  // as at its logon
    copy.Logoff();
    EXPECT_EQ(Rights(copy), kNobody);
}

TEST(SystemSetting, EachQuestionGoesToTheStore) {
    Store store;
    for (CClassAgentConnectInterface* const connect : {static_cast<Store*>(nullptr), &store}) {
        CSystemSetting setting(connect);
        CUserInfo user;
        EXPECT_EQ(setting.GetUserInfo("bob", nullptr), 0);
        EXPECT_EQ(setting.GetUserInfo("bob", &user), connect != nullptr ? 19 : 0);
        user.SetUserID(100);
        EXPECT_EQ(Line({setting.IsAutoLogon(), setting.SetAutoLogon(5), setting.SetAutoLogonUser("ann"),
                        setting.ReloadUserList(), setting.GetUserCount(), setting.SaveFunctionSecurity(user),
                        setting.AddUserInfo(user), setting.DeleteUserInfo("ann"), setting.LogonWithDialog(),
                        setting.LogonWithoutDialog("ann", "pw"), setting.IsLogon()}),
                  connect != nullptr ? "14 20 18 22 23 125 126 28 0 1 1" : "0 0 0 0 -1 0 0 0 0 0 0");
        EXPECT_EQ(Line({setting.GetAutoLogonUserName(), setting.GetAutoLogonPassword(), setting.GetUserName(2),
                        user.GetUsername()}),
                  connect != nullptr ? "16 17 uu bob" : "   ");
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
