#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/failure.h"

namespace qel {

/// What a service of PAM says to a name and a password.
struct PamAnswer {
    bool isRight = false;
    FailureKind kind = FailureKind::kRefused;  // kState where the service, and not the person, is the reason
    std::string text = {};                     // why not
};

/// Whether the service lets this user in: pam_authenticate, then pam_acct_mgmt. One hidden question is answered with
/// the password, one that is shown with the user; a service that asks more is refused, and so is one that lets somebody
/// in without the password. It may take seconds, as services wait after a wrong password. The copies of the password
/// that the system's library gets are overwritten by it; no other is made. One thread of the process after the other.
/// @param service a file in /etc/pam.d or /usr/lib/pam.d; kState without one
/// @param folder of services in the place of these two, POSIX
/// @throws std::bad_alloc
QELLIB10_INTERNAL_API PamAnswer AskPam(const std::string& service, const std::string& user, std::string_view password,
                                       const std::string& folder = "");

}  // namespace qel
