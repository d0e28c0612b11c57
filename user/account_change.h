#pragma once

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

namespace qel {

/// What happens to an account.
enum class AccountEvent {
    kLogon,
    kLogonRefused,
    kLogout,
    kLocked,                 ///< after too many wrong passwords
    kAdded,                  ///< `after`: the name for people to read
    kRemoved,                ///< `before`: the same
    kRenamed,                ///< the name for people to read
    kRightsChanged,          ///< one privilege, or the level of one function
    kPasswordChanged,        ///< the password itself is never here
    kAutomaticLogonChanged,  ///< `account` is empty; `before` and `after`: who is logged on, or "on" and "off"
    kPasswordRefused,        ///< it was to be changed, and stays: `reason` says why
};

/// A user store reports this before it does it, so that there can be an entry about it first. Texts are in the code
/// page of the process.
struct QELLIB10_API AccountChange {
    AccountEvent event = AccountEvent::kLogon;
    CString user = {};     ///< who does it; empty when nobody is logged on
    CString account = {};  ///< whose it is; of kLogonRefused empty unless there is such an account: somebody may have
                           ///< typed the password in the place of the name
    CString item = {};     ///< of kRightsChanged: what, such as "manager" or "function 201 Approve"
    CString before = {};   ///< empty: it was not there
    CString after = {};    ///< empty: it is gone
    CString reason = {};   ///< what the store knows about why; of kLogonRefused empty when name or password were wrong
};

}  // namespace qel
