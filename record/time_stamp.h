#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/failure.h"
#include "qellib10/record/trail.h"

// Time stamps of RFC 3161. The time of an entry is what the installation's clock said, and whoever has the
// installation's key can write a whole trail again. A stamp is from somebody else, an authority, who has signed that an
// entry existed at a time, and with it all entries before: none of these can have been made later. Nothing here uses a
// network: a request is a file that somebody sends, and the answer is the file that comes back.
//
// Operations return nothing on failure, and qel::LastFailure has the reason. Paths are in the library's form.
namespace qel {

/// What an authority has signed.
struct QELLIB10_API TimeStamp {
    std::string sha256 = {};    ///< of the entry's line, as TrailReceipt::hash
    std::int64_t time = 0;      ///< ms since 1970 in UTC
    std::int64_t accuracy = 0;  ///< so many ms earlier or later it may have been; 0 where the authority does not say
};

/// How far the clock of a trail and that of an authority may be from each other, in ms, besides TimeStamp::accuracy.
inline constexpr std::int64_t kStampTolerance = 5 * 60 * 1000;

/// Makes a request for a stamp of an entry: it has the entry's hash, 64 random bits, so that no older answer fits it,
/// and asks for the authority's certificate.
///
/// @code
/// const std::optional<std::string> request = qel::MakeStampRequest(R"(\srv\archive\trail.jsonl)");
/// if (!request) return;
/// std::fwrite(request->data(), 1, request->size(), stdout);  // the file request.tsq: send it
/// @endcode
/// @param entry its number; 0 for the last one
/// @return the bytes of a file .tsq
QELLIB10_API std::optional<std::string> MakeStampRequest(std::string_view trailPath, std::uint64_t entry = 0);

/// Checks the authority's answer: that it is one for this request, over a SHA-256, signed by a certificate for time
/// stamps alone that leads to one of those in a file. All of them must have been valid at the time of the stamp;
/// whether one was withdrawn is not asked. `openssl ts -verify` says the same, but also accepts signatures over SHA-1
/// and bytes after the answer.
/// @param answer the bytes of a file .tsr, at most 46,080
/// @param request the bytes that MakeStampRequest has returned
/// @param tsaCa a file of certificates from BEGIN CERTIFICATE to END CERTIFICATE, of at most 1 MiB: those of the
/// authority's root, from elsewhere than the archive, and perhaps others that lead to it
QELLIB10_API std::optional<TimeStamp> CheckStamp(std::string_view answer, std::string_view request,
                                                 std::string_view tsaCa);

/// Checks the answer in the same way, and appends it as an entry of the kind trail_kind::kTimeStamp, so that it stays
/// with the trail and is checked by CheckTrail. A stamp whose time does not fit to the entry, by more than
/// kStampTolerance, is refused: one of the clocks is wrong.
///
/// @code
/// qel::Trail trail({.path = R"(\srv\archive\trail.jsonl)", .headPath = R"(\var\lib\titrator\trail.head)"},
///                  std::make_shared<qel::SshAgentSigner>());
/// const std::string answer, request;  // the bytes of both files
/// if (trail.Open() == 0 || !qel::AppendStamp(trail, answer, request, R"(\etc\titrator\tsa.pem)")) return;
/// @endcode
/// @param user who has got it, for the entry; may be empty
QELLIB10_API std::optional<TrailReceipt> AppendStamp(Trail& trail, std::string_view answer, std::string_view request,
                                                     std::string_view tsaCa, std::string_view user = {});

}  // namespace qel
