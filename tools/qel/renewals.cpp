// qel renewals: who registered the versions of a document, when and why.
#include <array>
#include <cstdio>

#include "tool.h"

namespace tool {
namespace {

struct Options {
    std::string file;
    bool json = false;
};

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
    for (const CHistoryRenewInfo& record : records.whole) {
        json["records"].push_back(RecordJson(json["records"].size() + 1, record));
        text += RecordLine(json["records"].back());
    }
    options.json ? Print(json) : Print(text);
    if (records.end == file.GetLength()) return kGood;
    return Complain(Shown(options.file) + ": " + (records.isCut ? "ends within a record" : "has no record") +
                        " at byte " + std::to_string(records.end),
                    records.isCut ? kCut : kInconsistent);
}

}  // namespace

void AddRenewals(CLI::App& app, Status& status) {
    CLI::App* const command = app.add_subcommand("renewals", "List who registered versions of a document, and why");
    const auto options = std::make_shared<Options>();
    AddFile(*command, "FILE", options->file, "The file of renewal records");
    command->add_flag("--json", options->json, "Write JSON");
    command->callback([options, &status] { status = List(*options); });
}

}  // namespace tool
