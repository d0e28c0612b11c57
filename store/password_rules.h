#pragma once

#include <chrono>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

namespace qel {

/// What an installation asks of its users' passwords. Without settings nothing is asked, as in stores that exist: each
/// rule is used once it is set. All programs that write to one store should have the same rules.
///
/// @code
/// qel::UserStoreSettings settings;
/// settings.passwords.leastCharacters = 12;
/// settings.passwords.isNameRefused = true;
/// settings.passwords.greatestAge = std::chrono::days(90);
/// settings.passwords.history = 5;
/// settings.passwords.mustChangeAtFirstUse = true;
/// qel::UserStore store(R"(C:\data\users.db)", settings);
/// @endcode
///
/// The rules are for passwords that are set from now on; one that was set before is not measured by them. Its age
/// counts from the first logon under the rule about it.
struct PasswordRules {
    int leastCharacters = 0;  ///< of Unicode, not bytes
    int leastKinds = 0;       ///< of the four kinds a to z, A to Z, 0 to 9, and all other characters; 0 to 4
    /// The password is not the user's name or full name or a part of these, and has in it neither the name nor a word
    /// of both with 3 characters or more. The case of A to Z makes no difference, in code page 932 neither that of
    /// full-width, Greek and Cyrillic letters.
    bool isNameRefused = false;
    bool isOneCharacterRefused = false;  ///< one character, repeated

    /// After it the password no longer logs on: LogonStatus::kPasswordExpired, and only UserStore::ChangePassword leads
    /// on. 0: for ever. Time is the latest that was seen at a logon of this user, so an expired password stays expired
    /// when the clock is set back; one that was set later than the clock now says is expired, too, since nobody knows
    /// its age.
    std::chrono::seconds greatestAge{0};
    /// Before it, people cannot change their passwords again, so that they do not go through the history at once. Not
    /// for one that has expired or has to be changed.
    std::chrono::seconds leastAge{0};
    /// So many of a user's last passwords, with the present one, cannot be taken again; their hashes are kept. 0 to 24;
    /// each costs a change as much as a logon.
    int history = 0;
    /// A password that somebody else has set, by AddUser or SaveFunctionSecurity, has to be changed by its user at the
    /// first logon: LogonStatus::kPasswordToChange.
    bool mustChangeAtFirstUse = false;
};

/// Why a password was not taken.
enum class PasswordFault {
    kNone,
    kImpossible,    ///< it is empty, or has more than 1024 bytes
    kTooShort,      ///< PasswordRules::leastCharacters
    kTooFewKinds,   ///< leastKinds
    kOneCharacter,  ///< isOneCharacterRefused
    kHasName,       ///< isNameRefused
    kUsedBefore,    ///< history; a user's own change always needs another password
    kTooEarly,      ///< leastAge
    kNotVerified    ///< name or present password are wrong, or the user is locked
};

/// What can be said of a password without the store, such as while somebody types it.
/// @param username, fullName of the user
/// @return one of kNone to kHasName
QELLIB10_API PasswordFault FindPasswordFault(const PasswordRules& rules, const CString& username,
                                             const CString& fullName, const CString& password);

/// A few English words, such as "the password has too few characters"; empty for kNone.
QELLIB10_API const char* PasswordFaultText(PasswordFault fault);

}  // namespace qel
