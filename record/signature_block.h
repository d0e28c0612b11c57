#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/record/recorded_version.h"
#include "qellib10/record/signing_rules.h"
#include "qellib10/record/trail.h"

namespace qel {

/// A person's signature that counts.
struct QELLIB10_API ShownSignature {
    std::string meaning = {};  ///< as in PersonStatement, as name, user and time are
    std::string name = {};
    std::string user = {};
    std::int64_t time = 0;          ///< ms since 1970 in UTC
    std::string key = {};           ///< fingerprint of the person's key, "SHA256:..."
    std::string reportSha256 = {};  ///< of the report that was signed; empty: there was none
    std::uint64_t entry = 0;        ///< number of the entry that has it
    std::string entryHash = {};     ///< SHA-256 of that entry's line
};

/// What a printed report shows of who has signed a version, and what a reader needs to find all of it in the trail.
struct QELLIB10_API SignatureBlock {
    std::string trailId = {};
    std::string cabinet = {};
    RecordedVersion version = {};
    std::string installationKey = {};  ///< fingerprint of the key that has signed the version's entry
    std::vector<ShownSignature> signatures = {};
    /// Whether the version has another content than its first entry says, or another one was registered or taken out.
    bool isChanged = false;
    std::string whyNotFinal = {};  ///< a sentence; empty if the version may be final by the rules

    /// The block as lines of UTF-8 in English, the first one about the registration, one for each signature, then how
    /// to find them. Times are in UTC. What somebody has typed comes last in its line, and has no control characters,
    /// so that no text looks like another line. Compare reportSha256 with the report that is printed above them.
    std::vector<std::string> Lines() const;
};

/// Reads the signatures of a version that count, up to the trail's last acknowledged entry. It goes through the whole
/// trail, in the memory that CheckSignatures takes.
///
/// @code
/// qel::TrailSettings settings;
/// std::shared_ptr<qel::Signer> installation;
///
/// qel::Trail trail(settings, installation);
/// qel::RecordedCabinet results(trail, {.cabinetPath = R"(\srv\a\results.hcf)", .recordPath = R"(\srv\a\renewals)"});
/// if (trail.Open() == 0 || results.Open() == 0) return;
/// const auto versions = results.List();
/// if (!versions || versions->empty()) return;
/// const auto block = qel::ReadSignatureBlock(trail, results.Guid(), versions->back(), {.approvals = 2});
/// if (!block) return;
/// for (const std::string& line : block->Lines()) std::puts(line.c_str());
/// @endcode
/// @param trail must be open
/// @param version as RecordedCabinet::List has given it
/// @return nothing if the trail cannot be read or is not the one that was acknowledged, and for a version that no entry
/// has recorded; qel::LastFailure has the reason
QELLIB10_API std::optional<SignatureBlock> ReadSignatureBlock(Trail& trail, std::string_view cabinet,
                                                              const RecordedVersion& version,
                                                              const SigningRules& rules);

}  // namespace qel
