#pragma once

#include <memory>
#include <string_view>

#include "qellib10/record/trail.h"
#include "qellib10/user/account_change.h"

namespace qel {

/// Joins the accounts of an application with the archive's trail: who logged on, who was refused, and who gave whom
/// which right, each as an entry before it takes effect. Where the application has to append these entries by itself,
/// one path to the accounts without an entry is easily left.
///
/// @code
/// class Users {
/// public:
///     explicit Users(qel::Trail& trail) : m_recorded(trail) {}
///     // As UserStoreSettings::record, or called by a store of the application's own.
///     bool Record(const qel::AccountChange& change) { return m_recorded.Enter(change); }
///     void Because(std::string_view reason) { m_recorded.SetReason(reason); }
/// private:
///     qel::RecordedUsers m_recorded;
/// };
/// @endcode
///
/// An entry has who does it in `user` and the account in `object`, with the item where only one right is changed. A
/// logon and its refusal have the account in `user`. Passwords are nowhere. The reason is what the store knows, such as
/// that a password has expired, else that of SetReason. A user's own change of the password has "by its user" without
/// one; where somebody else sets it, a reason is needed, as for rights. The trail must be open and outlive this
/// object. One thread at a time.
class QELLIB10_API RecordedUsers {
public:
    explicit RecordedUsers(Trail& trail);
    ~RecordedUsers();
    RecordedUsers(const RecordedUsers&) = delete;
    RecordedUsers& operator=(const RecordedUsers&) = delete;

    /// Why the next changes are made; UTF-8. Logons need none.
    void SetReason(std::string_view reason);
    /// Appends and flushes the entry.
    /// @return false if the trail refused it, also because it needs a reason; then the change must not be made, and
    /// qel::LastFailure has the reason
    bool Enter(const AccountChange& change);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace qel
