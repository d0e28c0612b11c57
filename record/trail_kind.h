#pragma once

#include <string_view>

#include "qellib10/platform/export.h"

/// What entries of a trail are about: TrailRecord::action. An application adds kinds of its own.
namespace qel::trail_kind {

inline constexpr std::string_view kLogon = "logon";
inline constexpr std::string_view kLogonRefused = "logon refused";
inline constexpr std::string_view kLogout = "logout";
// Of accounts, by qel::RecordedUsers; object: the account, and what of it.
inline constexpr std::string_view kAccountAdded = "account added";
inline constexpr std::string_view kAccountRemoved = "account removed";
inline constexpr std::string_view kAccountRenamed = "account renamed";  ///< the name for people to read
inline constexpr std::string_view kAccountLocked = "account locked";    ///< user: whose; after too many wrong passwords
inline constexpr std::string_view kAutomaticLogonChanged = "automatic logon changed";
inline constexpr std::string_view kRightsChanged = "rights changed";
inline constexpr std::string_view kKeyAdded =
    "key added";  ///< object: "ssh-ed25519 AAAA...", which may sign from now on
inline constexpr std::string_view kKeyEnded =
    "key ended";  ///< object: the same, which may not from now on; never the last one
inline constexpr std::string_view kKeyRevoked =
    "key revoked";  ///< object: the same, which others may have; after: the number of the entry from which on it is
                    ///< distrusted, at most that of this one
inline constexpr std::string_view kPasswordChanged = "password changed";  ///< object: of which account or key
inline constexpr std::string_view kPasswordRefused =
    "password refused";  ///< object: whose password was to be changed, and stays; reason: why
inline constexpr std::string_view kMethodChanged = "method changed";
// Those of qel::RecordedCabinet.
inline constexpr std::string_view kRegistering = "result registering";  ///< nothing has happened yet
inline constexpr std::string_view kRegistered = "result registered";
inline constexpr std::string_view kAbandoned = "result abandoned";  ///< it was interrupted: the version is not there
inline constexpr std::string_view kVersionTakenOut = "version taken out";
inline constexpr std::string_view kReportPrinted = "report printed";
inline constexpr std::string_view kExport = "export";
inline constexpr std::string_view kPersonKeyChanging =
    "person key changing";  ///< object: the person; before: the old key; after: the new one, a blank and the name that
                            ///< is printed; nothing yet
inline constexpr std::string_view kPersonKeyAdded =
    "person key added";  ///< object: as PersonSigner::PublicKey, with which the user may sign from now on, never
                         ///< again after its end; after: PersonSigner::PrintedName, or empty: then any name is printed
inline constexpr std::string_view kPersonKeyEnded = "person key ended";  ///< the same, which may not from now on
inline constexpr std::string_view kSignature = "signature";              ///< statement: what the user has signed
inline constexpr std::string_view kSignatureRefused = "signature refused";
inline constexpr std::string_view kFileSealed = "file sealed";
inline constexpr std::string_view kRecovered =
    "recovered";  ///< what was interrupted is done nevertheless; after: what, such as kRegistered

// These are the trail's own: nobody else appends them.
inline constexpr std::string_view kTrailStarted = "trail started";      ///< object: the key that may sign
inline constexpr std::string_view kTrailContinued = "trail continued";  ///< the same; before: the old one's last entry
inline constexpr std::string_view kClockJumped = "clock jumped";        ///< by more than 2 s while the system ran
inline constexpr std::string_view kTailSetAside = "tail set aside";     ///< object: the file that has the torn bytes
inline constexpr std::string_view kTimeStamp =
    "time stamp";  ///< of qel::AppendStamp; object: number of the entry; size: bytes of the trail with it

/// Whether the trail itself appends entries of this kind.
QELLIB10_API bool IsOwn(std::string_view action);

/// Whether an entry of this kind changes something that exists, so that it needs a reason. So does each with a text
/// in TrailRecord::before.
QELLIB10_API bool NeedsReason(std::string_view action);

}  // namespace qel::trail_kind
