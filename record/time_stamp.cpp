#include "qellib10/record/time_stamp.h"

#include "qellib10/platform/archive/result.h"
#include "qellib10/record/stamp_entry.h"
#include "qellib10/record/text_forms.h"
#include "qellib10/record/trail_backwards.h"
#include "qellib10/record/trail_clock.h"
#include "qellib10/record/trail_file.h"
#include "qellib10/record/trail_line.h"
#include "qellib10/record/trail_writer.h"

namespace qel {
namespace {

struct PlacedEntry {
    TrailEntry entry;
    Sha256Digest hash = {};
    std::uint64_t length = 0;  // bytes of the trail with it
};

// The last entry for which @p isIt holds: what is stamped is near the end. Half a line there is somebody who appends.
template <class Predicate>
PlacedEntry FindBackwards(const std::string& path, const std::string& otherwise, Predicate&& isIt) {
    const GuardedFile file(path, GuardedFile::Use::kRead);
    LinesBackwards lines(file, file.Size());
    while (const std::optional<std::string_view> line = lines.Next()) {
        if (!lines.IsWhole()) continue;
        const Sha256Digest hash = Sha256(*line);
        if (isIt(*line, hash)) return {ReadEntry(*line).entry, hash, lines.End()};
    }
    throw DataError(otherwise);
}

// The reason of a file in a wrong form has the file's name.
std::optional<StampAuthorities> OpenAuthorities(std::string_view path) {
    try {
        return ReadAuthorities(std::string(path));
    } catch (const DataError& failure) {
        Refuse(FailureKind::kData, path, failure.what());
        return std::nullopt;
    }
}

// The stamp that @p answer is for @p request.
TimeStamp Checked(std::string_view answer, const StampRequest& request, const StampAuthorities& authorities) {
    const StampAnswer read(answer);
    authorities.Require(read, request);
    return ContentOf(read);
}

TrailReceipt Append(TrailWriter& writer, std::string_view answer, std::string_view request,
                    const StampAuthorities& authorities, std::string_view user) {
    const StampRequest asked = StampRequest::OfBytes(request);
    const TimeStamp stamp = Checked(answer, asked, authorities);
    const auto isIt = [&](std::string_view, const Sha256Digest& hash) { return hash == asked.Hash(); };
    const PlacedEntry stamped =
        FindBackwards(writer.Path(), "no entry of the trail has the hash that was stamped", isIt);
    RequireAfter(stamp, stamped.entry);
    RequireBefore(stamp, SystemMoment().time);
    TrailRecord record = StampRecord(stamped.entry, stamped.length, answer);
    record.user = user;
    return writer.Append(record);
}

}  // namespace

std::optional<std::string> MakeStampRequest(std::string_view trailPath, std::uint64_t entry) {
    std::optional<std::string> request;
    AsResult("MakeStampRequest", [&] {
        const auto isIt = [&](std::string_view line, const Sha256Digest&) {
            return entry == 0 || ReadEntry(line).entry.number == entry;
        };
        const std::string otherwise =
            entry == 0 ? "the trail has no entry" : "the trail has no entry " + std::to_string(entry);
        request = StampRequest::Make(FindBackwards(std::string(trailPath), otherwise, isIt).hash).Bytes();
        return 1;
    });
    return request;
}

std::optional<TimeStamp> CheckStamp(std::string_view answer, std::string_view request, std::string_view tsaCa) {
    std::optional<TimeStamp> stamp;
    AsResult("CheckStamp", [&] {
        const std::optional<StampAuthorities> authorities = OpenAuthorities(tsaCa);
        if (!authorities) return 0;
        stamp = Checked(answer, StampRequest::OfBytes(request), *authorities);
        return 1;
    });
    return stamp;
}

std::optional<TrailReceipt> AppendStamp(Trail& trail, std::string_view answer, std::string_view request,
                                        std::string_view tsaCa, std::string_view user) {
    std::optional<TrailReceipt> receipt;
    AsResult("AppendStamp", [&] {
        const std::optional<StampAuthorities> authorities = OpenAuthorities(tsaCa);
        if (!authorities) return 0;
        receipt = Append(WriterOf(trail), answer, request, *authorities, user);
        return 1;
    });
    return receipt;
}

}  // namespace qel
