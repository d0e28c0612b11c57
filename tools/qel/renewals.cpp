// qel renewals: who registered the versions of a document, when and why.
#include <array>
#include <cstdio>

#include "tool.h"
#ifdef QEL_WITH_TRAIL
#include "renewal_entries.h"
#endif

namespace tool {
namespace {

struct Options {
    std::string file, trail, cabinet;
    bool json = false;
};

#ifdef QEL_WITH_TRAIL
std::string GuidOf(const std::string& cabinet) {
    return OnFile(cabinet, [&] {
        CQFile file;
        Open(file, cabinet, CFile::modeRead | CFile::shareDenyNone);
        return std::string(qel::CabinetReader(file).Header().guid.GetString());
    });
}

// By version; those whose registering has an end.
RenewalEntries EntriesOf(const Options& options) {
    const std::string wanted = options.cabinet.empty() ? "" : GuidOf(options.cabinet);
    qel::CabinetRecords records;
    if (records.Read(Path(options.trail).View()) == 0)
        throw Named(options.trail, LastRefusal("cannot be read", kMalformed));
    std::vector<qel::CabinetRecords::Cabinet> cabinets = records.All();
    for (qel::CabinetRecords::Cabinet& cabinet : cabinets)
        std::erase_if(cabinet.versions,
                      [](const auto& each) { return each.state == qel::RecordedState::kInterrupted; });
    std::erase_if(cabinets, [&](const auto& cabinet) {
        return cabinet.versions.empty() || (!wanted.empty() && cabinet.guid != wanted);
    });
    if (cabinets.size() > 1)
        throw CLI::ValidationError("the trail knows " + std::to_string(cabinets.size()) +
                                   " cabinets: --cabinet has to name the one of these records");
    return cabinets.empty() ? RenewalEntries() : RenewalEntriesOf(cabinets.front());
}

// Adds what the trail says about a version.
Status Compare(const CHistoryRenewInfo& record, const RenewalEntries& entries, Json& json) {
    const auto found = entries.find(json["version"].get<std::uint64_t>());
    if (found == entries.end()) {
        json["entry"] = nullptr;
        return kNeverRecorded;
    }
    const qel::RecordedVersion& entry = found->second;
    json["entry"] = entry.entry;
    json["entryTime"] = qel::TrailTimeText(entry.time);
    json["entryUser"] = entry.user;
    json["entryFile"] = entry.file;
    json["entryReason"] = entry.reason;
    return IsRecordAsIn(record, entry) ? kGood : kRenewalDiffers;
}
#endif

// The local time of whoever wrote the record. Empty for a time that is none.
std::string TimeText(const COleDateTime& time) {
    if (time.GetStatus() != COleDateTime::valid) return {};
    std::array<char, 64> text = {};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d", time.GetYear(), time.GetMonth(),
                  time.GetDay(), time.GetHour(), time.GetMinute(), time.GetSecond());
    return text.data();
}

Json RecordJson(std::size_t version, const CHistoryRenewInfo& record) {
    const std::string time = TimeText(record.GetRenewDateTime());
    return {{"version", version},
            {"time", time.empty() ? Json(nullptr) : Json(time)},
            {"file", Utf8(record.GetFileName().View())},
            {"operator", Utf8(record.GetOperator().View())},
            {"comment", Utf8(record.GetComment().View())}};
}

std::string RecordLine(const Json& record) {
    const auto text = [&](const char* name) { return Shown(record[name].get<std::string>()); };
    std::string line = "version " + record["version"].dump() + ", " +
                       (record["time"].is_null() ? "at an unknown time" : record["time"].get<std::string>()) + ", ";
    line += text("operator").empty() ? "by nobody known" : "by " + text("operator");
    if (!text("file").empty()) line += ": " + text("file");
    if (!text("comment").empty()) line += " (" + text("comment") + ')';
    if (!record.contains("status")) return line + '\n';
    if (record["entry"].is_null()) return line + ": never recorded\n";
    line += ": entry " + record["entry"].dump() + ", " + record["entryTime"].get<std::string>();
    if (record["status"] != static_cast<int>(kGood))
        line += ", says something else: by " + text("entryUser") + ": " + text("entryFile") + " (" +
                text("entryReason") + ')';
    return line + '\n';
}

// What is not read is named with its place; what comes before it is listed.
Status List(const Options& options) {
    CQFile file;
    qel::RenewalRecords records;
    OnFile(options.file, [&] {
        Open(file, options.file, CFile::modeRead | CFile::shareDenyWrite);
        std::array<char, qel::kCabinetKindBytes> start = {};
        const UINT size = file.Read(start.data(), static_cast<UINT>(start.size()));
        if (size > 0 && qel::KindOfCabinetFile({start.data(), size}) != qel::CabinetFileKind::kRenewals)
            throw Failure("has no renewal records", kUnknown);
        file.SeekToBegin();
        records = qel::ReadRenewalRecords(file);
    });
    Json json{{"file", options.file}, {"records", Json::array()}, {"end", records.end}, {"cut", records.isCut}};
    std::string text;
    Status status = kGood;
#ifdef QEL_WITH_TRAIL
    const RenewalEntries entries = options.trail.empty() ? RenewalEntries() : EntriesOf(options);
#endif
    for (const CHistoryRenewInfo& record : records.whole) {
        Json one = RecordJson(json["records"].size() + 1, record);
#ifdef QEL_WITH_TRAIL
        if (!options.trail.empty()) {
            const Status found = Compare(record, entries, one);
            one["status"] = static_cast<int>(found);
            status = std::max(status, found);
        }
#endif
        text += RecordLine(one);
        json["records"].push_back(std::move(one));
    }
    options.json ? Print(json) : Print(text);
    if (records.end == file.GetLength()) return status;
    const Status ofFile =
        Complain(Shown(options.file) + ": " + (records.isCut ? "ends within a record" : "has no record") + " at byte " +
                     std::to_string(records.end),
                 records.isCut ? kCut : kInconsistent);
    return std::max(status, ofFile);
}

}  // namespace

void AddRenewals(CLI::App& app, Status& status) {
    CLI::App* const command = app.add_subcommand("renewals", "List who registered versions of a document, and why");
    const auto options = std::make_shared<Options>();
    AddFile(*command, "FILE", options->file, "The file of renewal records");
#ifdef QEL_WITH_TRAIL
    CLI::Option* const trail =
        command->add_option("--trail", options->trail, "Show the entry of this trail that recorded each version")
            ->type_name("FILE");
    command
        ->add_option("--cabinet", options->cabinet, "Whose versions these are, where the trail knows several cabinets")
        ->needs(trail)
        ->type_name("FILE");
    command->footer(
        "Exit status: 0 all records could be read; of several findings the highest:\n"
        "  7  cut             the file ends within a record\n"
        "  8  inconsistent    something else is after a record\n"
        "  16 never recorded  no entry of the trail has recorded the version\n"
        "  40 renewal differs the entry names another person, file or reason");
#endif
    command->add_flag("--json", options->json, "Write JSON");
    command->callback([options, &status] { status = List(*options); });
}

}  // namespace tool
