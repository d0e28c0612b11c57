#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "qellib10/platform/export.h"

namespace qel {

/// Who may sign a version of a document as what, and when it may be final. The same rules are for qel::Signing, which
/// keeps them, and for CheckSignatures, which notices where another program has not.
///
/// @code
/// std::map<std::string, CFunctionSecurity, std::less<>> rights;  // of each user
/// qel::SigningRules rules;
/// rules.approvals = 2;
/// rules.mayGive = [&](std::string_view user, std::string_view meaning, std::int64_t) {
///     const auto found = rights.find(user);
///     const int function = meaning == qel::signature_meaning::kApproved ? 201 : 200;
///     return found != rights.end() && found->second.GetFunctionSecurity(function) > 0;
/// };
/// @endcode
struct QELLIB10_API SigningRules {
    /// Whether an author may approve. Authors are who has registered the version, and who has signed as its author.
    bool authorMayApprove = false;
    /// How many people have to approve; if more than 1, none of them does so twice.
    unsigned approvals = 1;
    /// Whether "approved" needs a signature "reviewed" before it.
    bool approvalNeedsReview = false;
    /// Whether one person may review a version and approve it, too: else these are steps of two people.
    bool reviewerMayApprove = false;
    /// Whether an author may review.
    bool authorMayReview = true;
    /// Whether a user may sign with this meaning, and might at that time; empty: everybody may. It is asked for old
    /// signatures too: one that looks at today's rights alone takes old approvals with them.
    /// @param time of the signature's entry, ms since 1970 in UTC; of the statement while there is no entry yet
    std::function<bool(std::string_view user, std::string_view meaning, std::int64_t time)> mayGive = {};
};

}  // namespace qel
