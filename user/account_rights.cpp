#include "qellib10/user/account_rights.h"

#include <string>

namespace qel {

std::vector<AccountRight> RightsOf(const CUserInfo& account) {
    std::vector<AccountRight> rights;
    const auto add = [&](const CString& item, int level) {
        rights.push_back({item, CString(std::string_view(std::to_string(level)))});
    };
    add("maker", account.GetMakerFlag());
    add("manager", account.GetManagerFlag());
    add("show", account.GetSecurity().GetShow());
    CFunctionSecurity levels = account.GetSecurity();
    levels.SetMakerParameter(0);
    levels.SetManagerParameter(0);
    for (int i = 0; i < levels.GetFunctionIDCount(); ++i) {
        const int id = levels.GetFunctionID(i);
        const std::string number = "function " + std::to_string(id) + ' ';
        add(CString(std::string_view(number)) + levels.GetFunctionName(id), levels.GetFunctionSecurity(id));
    }
    return rights;
}

}  // namespace qel
