#include "qellib10/record/stamp_entry.h"

#include "qellib10/platform/error.h"
#include "qellib10/record/text_forms.h"
#include "qellib10/record/trail_file.h"
#include "qellib10/record/trail_kind.h"
#include "qellib10/record/trail_line.h"

namespace qel {
namespace {

constexpr std::uint64_t kLongestCertificates = 1 << 20;

void Require(bool isRight, const char* what) {
    if (!isRight) throw DataError(what);
}

// The entry whose line ends where the stamp's entry says.
TrailEntry EntryBefore(const GuardedFile& trail, const TrailEntry& entry, std::uint64_t at) {
    constexpr const char* kOther = "the time stamp names an entry that is not there";
    Require(entry.size > 0 && entry.size <= at, kOther);
    const std::string line = LineBefore(trail, entry.size);
    Require(Hex(Sha256(line)) == entry.sha256, kOther);
    TrailEntry stamped = ReadEntry(line).entry;
    Require(ReadEntryNumber(entry.object) == stamped.number, kOther);
    return stamped;
}

}  // namespace

StampAuthorities ReadAuthorities(const std::string& path) {
    return StampAuthorities(ReadShortFile(path, kLongestCertificates, "the file of certificates is longer than 1 MiB"));
}

StampAnswer ReadStampFile(const std::string& path) {
    return StampAnswer(ReadShortFile(path, kLongestStampAnswer, kStampAnswerTooLong));
}

TimeStamp ContentOf(const StampAnswer& answer) {
    return {.sha256 = Hex(answer.Hash()), .time = answer.Time(), .accuracy = answer.Accuracy()};
}

std::int64_t ClockOf(const TrailEntry& entry) { return entry.clock.value_or(entry.time); }

void RequireAfter(const TimeStamp& stamp, const TrailEntry& stamped) {
    Require(stamp.time >= ClockOf(stamped) - kStampTolerance - stamp.accuracy,
            "the time stamp's time is before that of the entry which it stamps: one of the clocks is wrong");
}

void RequireBefore(const TimeStamp& stamp, std::int64_t clock) {
    Require(stamp.time <= clock + kStampTolerance + stamp.accuracy,
            "the time stamp's time is after that of its entry: one of the clocks is wrong");
}

TrailRecord StampRecord(const TrailEntry& stamped, std::uint64_t length, std::string_view answer) {
    TrailRecord record;
    record.action = trail_kind::kTimeStamp;
    record.object = std::to_string(stamped.number);
    record.size = length;
    record.sha256 = Hex(StampAnswer(answer).Hash());
    record.statement = EncodeBase64(answer);
    return record;
}

StampedEntry CheckStampEntry(const GuardedFile& trail, const TrailEntry& entry, std::uint64_t at,
                             const StampAuthorities* authorities) {
    const StampAnswer answer(DecodeBase64(entry.statement));
    const TimeStamp stamp = ContentOf(answer);
    Require(stamp.sha256 == entry.sha256, "the time stamp is one of another hash than its entry says");
    const TrailEntry stamped = EntryBefore(trail, entry, at);
    if (authorities != nullptr) authorities->Require(answer, StampRequest::OfHash(answer.Hash()));
    RequireAfter(stamp, stamped);
    RequireBefore(stamp, ClockOf(entry));
    return {stamped.number, stamp};
}

}  // namespace qel
