#include <array>

#include "tool.h"

namespace tool {
namespace {

// In the order of their numbers.
constexpr std::array kNames = {
    "intact",
    "failed",
    "usage",
    "unknown",
    "renamed",
    "unreadable",
    "changed",
    "cut",
    "inconsistent",
    "malformed",
    "bad header",
    "not anchored",
    "unknown signer",
    "key not valid",
    "clock",
    "missing",
    "never recorded",
    "time stamp",
    "revoked key",
    "signature",
    "person's key",
    "against rules",
    "added",
    "not sealed",
    "not read again",
    "other trail",
    "key not yet valid",
    "version changed",
    "version interrupted",
    "version missing",
    "file changed",
    "file missing",
    "seal never recorded",
    "print never recorded",
    "not a file",
    "trail before missing",
    "other trail before",
    "allowed signers",
    "too large",
    "not kept",
    "renewal differs",
    "trail copy",
};
static_assert(kNames.size() == kTrailCopy + 1);

}  // namespace

const char* NameOf(Status status) { return kNames[static_cast<std::size_t>(status)]; }

bool IsFinding(Status status) {
    return status != kGood && status != kNotAnchored && status != kNotReadAgain && status != kNotKept;
}

}  // namespace tool
