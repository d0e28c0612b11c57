// qel trail export: the entries of a trail in a file, for people and for other programs.
#include "trail_export.h"

#include <algorithm>

#include "checked_entries.h"
#include "trail_text.h"

namespace tool {
namespace {

// Collects what is written, so that a line is no call of the system.
class Writer {
public:
    Writer(const qel::Descriptor& file, const std::string& name) : m_file(file), m_name(name) {}

    void Write(std::string_view text) {
        m_bytes += text;
        if (m_bytes.size() >= kBlock) Flush();
    }
    void Flush() {
        qel::WriteFully(m_file, std::as_bytes(std::span(m_bytes)), m_name);
        m_bytes.clear();
    }

private:
    static constexpr std::size_t kBlock = 256 * 1024;
    const qel::Descriptor& m_file;
    std::string m_name, m_bytes;
};

void WriteText(Writer& to, CheckedEntries& entries, const qel::TrailReport& report) {
    to.Write("trail " + report.trailId + ", last entry " + report.head + '\n' + ResultText(report) + '\n');
    while (const std::optional<qel::TrailEntry> entry = entries.Next()) to.Write(EntryLine(*entry));
    to.Write("end of report\n");
}

void WriteJson(Writer& to, CheckedEntries& entries, const qel::TrailReport& report) {
    const Json head{{"trail", report.trailId},
                    {"head", report.head},
                    {"entryCount", report.entries},
                    {"consistent", report.findingCount == 0},
                    {"findingCount", report.findingCount},
                    {"anchored", report.isAnchored},
                    {"pinned", report.pinned}};
    std::string text = head.dump();
    text.pop_back();
    to.Write(text + ",\n\"entries\":[");
    const char* separator = "\n";
    while (const std::optional<qel::TrailEntry> entry = entries.Next()) {
        const Json json = EntryJson(*entry, entries.Hash(), entries.Signer());
        to.Write(separator + json.dump(-1, ' ', false, Json::error_handler_t::replace));
        separator = ",\n";
    }
    to.Write("\n]}\n");
}

std::string Field(const Json& value) {
    if (!value.is_string()) return value.is_null() ? "" : value.dump();
    std::string field = "\"";
    for (const char c : qel::SpreadsheetText(Shown(value.get<std::string>())))
        field += c == '"' ? "\"\"" : std::string(1, c);
    return field + '"';
}

void WriteRow(Writer& to, const Json& entry, bool isHead) {
    std::string row;
    for (const auto& [name, value] : entry.items())
        row += (row.empty() ? "" : ",") + Field(isHead ? Json(name) : value);
    to.Write(row + "\r\n");
}

void WriteCsv(Writer& to, CheckedEntries& entries, const qel::TrailReport&) {
    WriteRow(to, EntryJson({}, "", ""), true);
    while (const std::optional<qel::TrailEntry> entry = entries.Next())
        WriteRow(to, EntryJson(*entry, entries.Hash(), entries.Signer()), false);
}

std::string FormatOf(const TrailExport& to) {
    if (!to.format.empty()) return to.format;
    const std::size_t point = to.target.find_last_of("./");
    std::string suffix = point == std::string::npos || to.target[point] == '/' ? "" : to.target.substr(point + 1);
    std::ranges::transform(suffix, suffix.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c; });
    for (const char* known : {"json", "csv", "pdf"}) {
        if (suffix == known) return suffix;
    }
    if (suffix == "txt" || suffix == "text") return "text";
    throw CLI::ValidationError("\"" + to.target + "\" ends with neither .txt, .json, .csv nor .pdf; give --format");
}

}  // namespace

Status ExportTrail(const std::string& trail, const qel::TrailReport& report, const TrailExport& to) {
    const std::string format = FormatOf(to);
    RequireNew(to.target, to.force, {trail});
    if (format == "pdf") {
        WriteTrailPdf(trail, report, to);
        return kGood;
    }
    CheckedEntries entries(trail, report);
    WriteAsAWhole(to.target, to.force, [&](const qel::Descriptor& file) {
        Writer writer(file, std::string(Path(to.target).View()));
        (format == "json" ? WriteJson : format == "csv" ? WriteCsv : WriteText)(writer, entries, report);
        writer.Flush();
    });
    if (entries.Passed() == 0) return kGood;
    return Complain(Shown(trail) + ": " + Count(entries.Passed(), "line is", "lines are") + " no entry", kMalformed);
}

}  // namespace tool
