#pragma once

#include <vector>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/user/user_info.h"

namespace qel {

/// One right of an account, as entries name it.
struct AccountRight {
    CString item;   // AccountChange::item
    CString level;  // a decimal number
};

/// The privileges "maker", "manager" and "show", then the levels as they are without the privileges, in the order of
/// the table. A function may be in it twice; the first one counts.
QELLIB10_INTERNAL_API std::vector<AccountRight> RightsOf(const CUserInfo& account);

}  // namespace qel
