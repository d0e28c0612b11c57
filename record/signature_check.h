#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/platform/export.h"
#include "qellib10/platform/failure.h"
#include "qellib10/record/signing_rules.h"
#include "qellib10/record/trail.h"

namespace qel {

/// What can be wrong with the signatures of people in a trail.
enum class SignatureFault {
    kMalformed,       ///< a line, a statement or a person's key that no writer writes
    kPersonKey,       ///< a key is announced that somebody has or has had, or ended that is not the person's
    kChanged,         ///< the statement is not what was signed
    kUnknownKey,      ///< signed with a key that was not announced for this user
    kEndedKey,        ///< signed with a key of the user that had ended
    kRepeated,        ///< the same statement was used before
    kOtherTrail,      ///< the statement was signed for another trail
    kOtherEntry,      ///< the entry says something else than the statement: user, cabinet, version, size, hash or, by
                      ///< more than 5 minutes, time
    kNotAllowed,      ///< the user may not sign with this meaning
    kSamePerson,      ///< one person has done two steps that need two people
    kOrder,           ///< approved before it was reviewed
    kChangedVersion,  ///< the version had another content before
    kOtherName,       ///< the printed name is not the one that was announced with the key
    kNotRegistered,   ///< no entry before has registered the version: announcing it (trail_kind::kRegistering) is not
                      ///< enough
};

struct QELLIB10_API SignatureFinding {
    SignatureFault fault = SignatureFault::kMalformed;
    std::uint64_t entry = 0;  ///< its number
    std::string user = {};    ///< of the entry, as all up to `sha256`; as in TrailRecord
    std::string cabinet = {};
    std::uint64_t cabinetVersion = 0;
    std::uint64_t size = 0;
    std::string sha256 = {};
    std::string text = {};    ///< a sentence
    std::uint64_t byte = 0;   ///< where its line starts in the trail
    std::string signer = {};  ///< fingerprint of the key that signed the entry, "SHA256:..."
};

struct QELLIB10_API SignatureReport {
    std::uint64_t entries = 0;
    std::uint64_t signatures = 0;                 ///< entries that are signatures, right or wrong
    std::vector<SignatureFinding> findings = {};  ///< at most kMostFindings
    std::uint64_t findingCount = 0;

    static constexpr std::size_t kMostFindings = 1000;
};

/// Reads a trail once and checks each signature of a person in it: its form, whether the person's own key has made it
/// for this entry, and the rules. Signatures that are wrong count for none of the later ones.
///
/// Run CheckTrail on the same file as well. That shows that the entries are those which were written: here they are
/// taken as they are, also those that announce people's keys.
///
/// It takes about 300 bytes of memory for each registered version and for each signature.
/// @param path in the library's form
/// @return 1 when the trail was read, whatever was found; 0 when it cannot be
QELLIB10_API int CheckSignatures(std::string_view path, const SigningRules& rules, SignatureReport& report);
/// The same up to the last entry that counts for CheckTrail, TrailReport::rightUpTo. Where its number is 0, do not
/// read the trail: all entries would count, and there none does.
/// @return 0 also when the trail does not have it, since somebody has exchanged the file in between
QELLIB10_API int CheckSignatures(std::string_view path, const SigningRules& rules, SignatureReport& report,
                                 const TrailReceipt& last);

}  // namespace qel
