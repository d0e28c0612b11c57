#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/export.h"

namespace qel {

/// The system's passwords as a qel::Authenticator: people sign with the password of their account, and the rules about
/// it, a lock and an end of the account are those of the installation, in a service of PAM (a file in /etc/pam.d). An
/// application that reads the system's passwords by itself passes over these rules.
///
/// @code
/// qel::PersonAgent person(qel::PamAuthenticator("titrator"));
/// const qel::PamAuthenticator isPasswordOf("titrator");
/// if (!isPasswordOf("mori", "as somebody has typed it")) std::puts(qel::LastFailure().text.c_str());
/// @endcode
///
/// The service may ask one hidden question, which gets the password, and one that is shown, which gets the name; it is
/// refused if it asks more, or lets somebody in without asking for the password. A wrong password may take seconds. A
/// process of an ordinary user can check that user's password alone with pam_unix; other modules have no such limit.
///
/// Copies are alike. Any number of threads; one after the other is served, as modules change the whole process: while
/// pam_unix runs its helper program, SIGCHLD has its default action, and a handler of the application misses the end of
/// a child. With `noreap` among the module's arguments it is left alone; then no handler may wait for children that
/// are not its own. A child that is forked meanwhile must not use this.
class QELLIB10_API PamAuthenticator {
public:
    /// @param service the application's, such as "titrator": a file in /etc/pam.d or /usr/lib/pam.d that this process
    /// can read. Without one everybody is refused (kState), and PAM's service "other" does not count; it does for each
    /// part that the file does not have, so let the file have lines `auth` and `account`.
    explicit PamAuthenticator(std::string_view service);

    /// @param user, password at most 511 bytes each
    /// @return whether the account has this password and may be used now. qel::LastFailure has the reason: its kind is
    /// kRefused where the person or the account is the reason, such as a password that has expired; kState where the
    /// service is
    bool operator()(std::string_view user, std::string_view password) const;

private:
    std::string m_service;
};

}  // namespace qel
