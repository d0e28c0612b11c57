#include "qellib10/record/trail_known.h"

#include "qellib10/platform/error.h"
#include "qellib10/platform/operation.h"
#include "qellib10/record/text_forms.h"

namespace qel {
namespace {

// The reason of a file in a wrong form has the file's name. @return whether it could be read, or is not asked for
template <class Step> bool IsRead(const std::string& path, Step&& step) {
    if (path.empty()) return true;
    try {
        step();
        return true;
    } catch (const DataError& failure) {
        return Refuse(FailureKind::kData, path, failure.what()) != 0;
    }
}

void RequireForms(const TrailAnchors& anchors) {
    if (!anchors.trailId.empty() && !IsHex(anchors.trailId, 32))
        throw DataError("the trail's ID is not 32 lower-case hexadecimal digits");
    if (!anchors.head.empty() && !IsHex(anchors.head, 64))
        throw DataError("the entry's hash is not 64 lower-case hexadecimal digits");
    if (!anchors.key.empty() && (!anchors.key.starts_with("SHA256:") || anchors.key.size() != 50))
        throw DataError("the key's fingerprint is not SHA256: and 43 characters");
    if (!anchors.stamp.empty() && anchors.tsaCa.empty())
        throw DataError("a time stamp proves nothing without the certificates of its authority");
}

// A stamp that is kept elsewhere is right, or of no use.
TimeStamp ReadOutsideStamp(const std::string& path, const StampAuthorities& authorities) {
    const StampAnswer answer = ReadStampFile(path);
    authorities.Require(answer, StampRequest::OfHash(answer.Hash()));
    return ContentOf(answer);
}

}  // namespace

bool ReadKnown(const TrailAnchors& anchors, TrailKnown& known) {
    RequireForms(anchors);
    const auto readHead = [&] {
        known.head = TrailHead(GuardedFile(anchors.headFile, GuardedFile::Use::kRead)).Load();
    };
    return IsRead(anchors.trustFile, [&] { known.allowed = AllowedSigners::OfFile(anchors.trustFile); }) &&
           IsRead(anchors.headFile, readHead) &&
           IsRead(anchors.tsaCa, [&] { known.authorities = ReadAuthorities(anchors.tsaCa); }) &&
           IsRead(anchors.stamp, [&] { known.stamp = ReadOutsideStamp(anchors.stamp, *known.authorities); });
}

}  // namespace qel
