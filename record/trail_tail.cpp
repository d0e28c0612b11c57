#include "qellib10/record/trail_tail.h"

#include <algorithm>
#include <limits>

#include "qellib10/platform/error.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/record/text_forms.h"
#include "qellib10/record/trail_keys.h"
#include "qellib10/record/trail_kind.h"

namespace qel {
namespace {

constexpr std::uint32_t kMostTails = 100;      // set aside after one entry
constexpr std::size_t kLongestFileName = 255;  // bytes

// The number of the entry that reports the tails set aside now: never that of the start.
std::uint64_t ReportOfTail(const TrailHeadState& head) { return std::max<std::uint64_t>(head.number + 1, 2); }

// Whether the file has nothing but the start of the tail: a copy of it that was interrupted, by a full disk perhaps.
bool IsStartOf(const GuardedFile& copy, std::string_view tail) {
    const std::uint64_t size = copy.Size();
    if (size > tail.size()) return false;
    std::string bytes(static_cast<std::size_t>(size), '\0');
    const std::size_t got = copy.ReadAt(std::as_writable_bytes(std::span(bytes)), 0);
    return got == size && tail.starts_with(bytes);
}

void Copy(const GuardedFile& copy, std::string_view tail) {
    copy.WriteAt(std::as_bytes(std::span(tail)), 0);
    copy.Flush();
    copy.FlushFolder();
}

// @return the number of the copy
std::uint32_t CopyTail(const std::string& path, const TrailHeadState& head, std::string_view tail) {
    for (std::uint32_t count = head.tailsSetAside + 1; count <= kMostTails; ++count) {
        const std::string name = TailName(path, ReportOfTail(head), count);
        const std::optional<GuardedFile> before = GuardedFile::OpenIfThere(name, GuardedFile::Use::kRead);
        if (!before) {
            Copy(GuardedFile(name, GuardedFile::Use::kMakeNew), tail);
            return count;
        }
        if (!IsStartOf(*before, tail)) continue;  // another tail, set aside before an interruption
        Copy(GuardedFile(name, GuardedFile::Use::kWrite), tail);
        return count;
    }
    throw DataError("too many torn ends of the trail were set aside after entry " + std::to_string(head.number));
}

}  // namespace

std::string TailName(const std::string& path, std::uint64_t number, std::uint32_t count) {
    return path + ".tail-" + std::to_string(number) + '-' + std::to_string(count);
}

void RequirePlaceForTails(const std::string& path) {
    const std::string longest = TailName(path, std::numeric_limits<std::uint64_t>::max(), kMostTails);
    ToPosixPath(longest);
    if (FileNameOf(longest).size() > kLongestFileName) throw DataError("the trail's name is too long");
}

std::string ReadTail(const GuardedFile& trail, const TrailHeadState& head, std::uint64_t size) {
    const std::uint64_t length = size - head.length;
    if (length > kLongestTail)
        throw DataError("there are " + std::to_string(length) + " bytes after entry " + std::to_string(head.number) +
                        " that are no entries");
    std::string tail(static_cast<std::size_t>(length), '\0');
    if (trail.ReadAt(std::as_writable_bytes(std::span(tail)), head.length) != tail.size())
        throw DataError("the trail became shorter");
    return tail;
}

bool KeepTail(const std::string& path, TrailHeadState& head, std::string_view tail) {
    const Sha256Digest hash = Sha256(tail);
    if (head.tailsSetAside > 0 && head.tailSize == tail.size() && head.tailHash == hash) return false;
    head.tailsSetAside = CopyTail(path, head, tail);
    head.tailSize = tail.size();
    head.tailHash = hash;
    return true;
}

TrailRecord TailReport(const std::string& path, const TrailHeadState& head) {
    TrailRecord report;
    report.action = trail_kind::kTailSetAside;
    report.object = FileNameOf(TailName(path, ReportOfTail(head), head.tailsSetAside));
    report.after = std::to_string(head.tailsSetAside) + " since the last entry";
    report.reason = "a writer was interrupted: the bytes after the last entry were no entry";
    report.size = head.tailSize;
    report.sha256 = Hex(head.tailHash);
    return report;
}

}  // namespace qel
