#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/failure.h"

namespace qel {

/// What a signature means: PersonStatement::meaning. An application adds meanings of its own.
namespace signature_meaning {
inline constexpr std::string_view kAuthor = "author";
inline constexpr std::string_view kReviewed = "reviewed";
inline constexpr std::string_view kApproved = "approved";
inline constexpr std::string_view kRejected = "rejected";  ///< the version cannot be final any more
}  // namespace signature_meaning

/// What a person signs: which version of which document, what for, who and when. A signature of a hash alone could be
/// put under another meaning, another name or another trail. The random `nonce` makes each statement one of its own,
/// so none can be used twice. Texts are UTF-8.
///
/// It is in TrailRecord::statement, with the person's signature in the form of `ssh-keygen -Y sign` and the namespace
/// `qellib10-signature`. docs/formats.md describes it.
struct QELLIB10_API PersonStatement {
    std::string trailId = {};          ///< 32 hexadecimal digits, as all digits here in lower case
    std::string nonce = {};            ///< 32 random hexadecimal digits
    std::string cabinet = {};          ///< GUID, as CGuid::GetString writes it
    std::uint64_t cabinetVersion = 0;  ///< from 1
    std::uint64_t size = 0;            ///< bytes of the version
    std::string sha256 = {};           ///< of the version, 64 hexadecimal digits
    std::string reportSha256 = {};     ///< of the report's job without its block of signatures; empty: there is none
    std::string meaning = {};          ///< one of signature_meaning, or another text of 1 to 256 bytes
    std::string name = {};             ///< for people to read, 1 to 256 bytes
    std::string user = {};             ///< for logging on, 1 to 256 bytes
    std::int64_t time = 0;             ///< ms since 1970 in UTC

    bool operator==(const PersonStatement&) const = default;
};

/// The statement in TrailRecord::statement. Whether it is signed rightly is not checked: CheckSignatures does that.
/// @return nothing for a text in any other form than the only one; qel::LastFailure has the reason
QELLIB10_API std::optional<PersonStatement> ReadPersonStatement(std::string_view text);

}  // namespace qel
