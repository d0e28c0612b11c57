#include "qellib10/record/trail_line.h"

#include <algorithm>
#include <charconv>
#include <chrono>

#include "qellib10/platform/error.h"
#include "qellib10/platform/text/printable_text.h"
#include "qellib10/record/canonical_json.h"
#include "qellib10/record/text_forms.h"
#include "qellib10/record/trail_kind.h"

namespace qel {
namespace {

constexpr std::uint64_t kFormat = 1;
constexpr std::string_view kSignatureKey = ",\"sig\":\"";
constexpr std::string_view kAfterSignature = "\"}";

void Require(bool isRight, const char* what) {
    if (!isRight) throw DataError(std::string("an entry of a trail ") + what);
}

bool IsBlank(std::string_view text) { return text.find_first_not_of(" \t\r\n") == std::string_view::npos; }

void RequireValid(const TrailEntry& entry) {
    Require(IsHex(entry.trailId, 32), "has no trail ID");
    Require(entry.number > 0, "has no number");
    Require(!entry.clock || *entry.clock < entry.time, "has a clock that is not before its time");
    Require(HasFormOfGuid(entry.bootId), "has no ID of the system's start");
    Require(!IsBlank(entry.action), "does not say what was done");
    Require(!IsBlank(entry.reason) || (!trail_kind::NeedsReason(entry.action) && entry.before.empty()),
            "that changes something needs a reason");
    Require(entry.cabinet.empty() ? entry.cabinetVersion == 0 : IsCabinet(entry.cabinet), "names a cabinet wrongly");
    Require(entry.sha256.empty() ? entry.size == 0 : IsHex(entry.sha256, 64), "has a hash in another form");
    Require(IsHex(entry.previous, 64), "has no hash of the one before");
    Require(entry.number > 1 || entry.previous == std::string(64, '0'), "is the first and names one before");
}

std::string ClockText(const TrailEntry& entry) { return entry.clock ? TrailTimeText(*entry.clock) : ""; }

JsonWriter Started(std::string_view trailId, std::uint64_t number) {
    JsonWriter json;
    json.Number("format", kFormat);
    json.Text("trail", trailId);
    json.Number("number", number);
    return json;
}

// The line up to the quotation mark after the last hash.
std::string Head(const TrailEntry& entry) {
    RequireValid(entry);
    JsonWriter json = Started(entry.trailId, entry.number);
    json.Text("time", TrailTimeText(entry.time));
    json.Text("clock", ClockText(entry));
    json.Text("boot", entry.bootId);
    json.Number("boottime", entry.bootTime);
    json.Text("host", entry.host);
    json.Text("application", entry.application);
    json.Text("version", entry.version);
    json.Text("user", entry.user);
    json.Text("action", entry.action);
    json.Text("object", entry.object);
    json.Text("before", entry.before);
    json.Text("after", entry.after);
    json.Text("reason", entry.reason);
    json.Text("cabinet", entry.cabinet);
    json.Number("cabinetversion", entry.cabinetVersion);
    json.Number("size", entry.size);
    json.Text("sha256", entry.sha256);
    json.Text("statement", entry.statement);
    json.Text("prev", entry.previous);
    Require(IsUtf8(json.Written()), "has a text that is not UTF-8");
    return json.Written();
}

TrailEntry ReadFields(JsonReader& json) {
    TrailEntry entry;
    Require(json.Number("format") == kFormat, "has a format that is not known");
    entry.trailId = json.Text("trail");
    entry.number = json.Number("number");
    entry.time = ReadTrailTime(json.Text("time"));
    const std::string clock = json.Text("clock");
    if (!clock.empty()) entry.clock = ReadTrailTime(clock);
    entry.bootId = json.Text("boot");
    entry.bootTime = json.Number("boottime");
    entry.host = json.Text("host");
    entry.application = json.Text("application");
    entry.version = json.Text("version");
    entry.user = json.Text("user");
    entry.action = json.Text("action");
    entry.object = json.Text("object");
    entry.before = json.Text("before");
    entry.after = json.Text("after");
    entry.reason = json.Text("reason");
    entry.cabinet = json.Text("cabinet");
    entry.cabinetVersion = json.Number("cabinetversion");
    entry.size = json.Number("size");
    entry.sha256 = json.Text("sha256");
    entry.statement = json.Text("statement");
    entry.previous = json.Text("prev");
    return entry;
}

std::string Padded(std::int64_t value, std::size_t digits) {
    const std::string text = std::to_string(value);
    return std::string(digits - std::min(digits, text.size()), '0') + text;
}

unsigned Field(std::string_view text, std::size_t at, std::size_t digits) {
    unsigned value = 0;
    const char* const end = text.data() + at + digits;
    const auto [stop, error] = std::from_chars(text.data() + at, end, value);
    if (stop != end || error != std::errc()) throw DataError("a time is not in the form of a trail");
    return value;
}

}  // namespace

std::string TrailTimeText(std::int64_t time) {
    using namespace std::chrono;
    Require(time >= 0 && time < kTrailTimeEnd, "has a time out of range");
    const sys_time<milliseconds> moment{milliseconds(time)};
    const auto day = floor<days>(moment);
    const year_month_day date(day);
    const hh_mm_ss clock(moment - day);
    return Padded(static_cast<int>(date.year()), 4) + '-' + Padded(static_cast<unsigned>(date.month()), 2) + '-' +
           Padded(static_cast<unsigned>(date.day()), 2) + 'T' + Padded(clock.hours().count(), 2) + ':' +
           Padded(clock.minutes().count(), 2) + ':' + Padded(clock.seconds().count(), 2) + '.' +
           Padded(clock.subseconds().count(), 3) + 'Z';
}

std::int64_t ReadTrailTime(std::string_view text) {
    using namespace std::chrono;
    if (text.size() != 24) throw DataError("a time is not in the form of a trail");
    const year_month_day date(year(static_cast<int>(Field(text, 0, 4))), month(Field(text, 5, 2)),
                              day(Field(text, 8, 2)));
    if (!date.ok()) throw DataError("a time is not in the form of a trail");
    const auto clock = hours(Field(text, 11, 2)) + minutes(Field(text, 14, 2)) + seconds(Field(text, 17, 2));
    const auto moment = sys_days(date) + clock + milliseconds(Field(text, 20, 3));
    const std::int64_t time = moment.time_since_epoch().count();
    if (TrailTimeText(time) != text) throw DataError("a time is not in the form of a trail");
    return time;
}

std::string StartOfLine(std::string_view trailId, std::uint64_t number) {
    return Started(trailId, number).Written() + ',';
}

std::string SignedPart(const TrailEntry& entry) { return Head(entry) + '}'; }

std::string LineOf(std::string_view signedPart, const SshSignature& signature) {
    std::string line(signedPart.substr(0, signedPart.size() - 1));
    line += kSignatureKey;
    line += EncodeBase64(signature.Blob(kEntryNamespace));
    line += kAfterSignature;
    Require(line.size() < kLongestLine, "is longer than 64 KiB");
    return line;
}

ReadLine ReadEntry(std::string_view line) {
    Require(line.size() < kLongestLine, "is longer than 64 KiB");
    ReadLine read;
    JsonReader json(line);
    read.entry = ReadFields(json);
    read.signature = SshSignature::OfBlob(DecodeBase64(json.Text("sig")), kEntryNamespace);
    json.End();
    read.signedPart = SignedPart(read.entry);
    Require(LineOf(read.signedPart, read.signature) == line, "is written in another form than the only one");
    return read;
}

namespace trail_kind {

bool IsOwn(std::string_view action) {
    constexpr std::string_view kOwn[] = {kTrailStarted, kTrailContinued, kClockJumped, kTailSetAside, kTimeStamp};
    return std::ranges::find(kOwn, action) != std::end(kOwn);
}

bool NeedsReason(std::string_view action) {
    constexpr std::string_view kChanges[] = {
        kRightsChanged, kKeyEnded,       kMethodChanged,  kVersionTakenOut,   kRecovered,
        kClockJumped,   kTailSetAside,   kTrailContinued, kPersonKeyChanging, kPersonKeyEnded,
        kKeyRevoked,    kAccountRemoved, kAccountRenamed,
    };
    return std::ranges::find(kChanges, action) != std::end(kChanges);
}

}  // namespace trail_kind
}  // namespace qel
