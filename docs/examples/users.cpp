// Who may calibrate? Rights by function, checked after a logon with the library's user store.
#include <qellib10/qellib10.h>
#include <qellib10/store.h>

#include <cstdio>

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

}  // namespace

int main() {
    qel::UserStore store("users.db");
    store.Connect();
    CSystemSetting setting(&store);
    if (!store.IsConnected() || !store.CreateFirstAdministrator("sato", "amber")) {
        std::puts(qel::LastFailure().text.c_str());
        return 1;
    }
    CUserInfo user;
    user.SetUsername("mori");
    user.SetPassword("violet");
    user.SetSecurity(TitratorSecurity());
    setting.AddUserInfo(user);

    const auto show = [&setting](const char* name) {
        std::printf("%s: calibrate %d, delete data %d\n", name, setting.GetLogonUserSecurityLevel(kCalibrate),
                    setting.GetLogonUserSecurityLevel(kDeleteData));
    };
    show("nobody");
    for (const auto& [name, password] : {std::pair("mori", "violet"), std::pair("sato", "amber")}) {
        if (!setting.LogonWithoutDialog(name, password)) return 1;
        show(name);
    }
    std::puts(setting.LogonWithoutDialog("mori", "wrong") ? "logged on" : "refused");
    show("nobody");
    return 0;
}
