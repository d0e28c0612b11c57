// The report of qel trail export as a PDF: a table over pages, with the result of the check on each of them.
#include "checked_entries.h"
#include "table_pdf.h"
#include "trail_export.h"
#include "trail_text.h"

namespace tool {
namespace {

constexpr std::uint64_t kMostEntries = 20'000;  // all rows are in memory

// The whole texts are in the other formats.
std::vector<std::string> RowOf(const TablePdf& table, const qel::TrailEntry& entry, const std::string& hash) {
    std::string object = entry.object;
    if (!entry.cabinet.empty())
        object += (object.empty() ? "" : " ") + entry.cabinet + " version " + std::to_string(entry.cabinetVersion);
    const bool isChange = !entry.before.empty() || !entry.after.empty();
    const std::string change = isChange ? entry.before + (entry.before.empty() ? "" : " -> ") + entry.after : "";
    std::vector<std::string> row = {std::to_string(entry.number),
                                    qel::TrailTimeText(entry.time),
                                    entry.user,
                                    entry.action,
                                    object,
                                    change,
                                    entry.reason,
                                    hash};
    for (std::size_t i = 0; i < row.size(); ++i) row[i] = table.Fitted(row[i], i);
    return row;
}

}  // namespace

void WriteTrailPdf(const std::string& trail, const qel::TrailReport& report, const TrailExport& to) {
    if (report.entries > kMostEntries)
        throw Failure(Shown(trail) + ": has " + std::to_string(report.entries) + " entries; a PDF takes " +
                      std::to_string(kMostEntries) + ", the other formats any number");
    TablePdf table{.title = "Trail " + report.trailId,
                   .headline = "Trail " + Shown(trail),
                   .continued = "Trail (continued)",
                   .head = {"Trail ID " + report.trailId, "Last entry " + report.head, ResultText(report)},
                   .columns = {{"Entry", 14},
                               {"UTC", 30},
                               {"User", 24},
                               {"Action", 26},
                               {"Object", 40},
                               {"Change", 60},
                               {"Reason", 36},
                               {"SHA-256 of the entry", 43}}};
    CheckedEntries entries(trail, report);
    while (const std::optional<qel::TrailEntry> entry = entries.Next())
        table.rows.push_back(RowOf(table, *entry, entries.Hash()));
    table.Write(to.target);
    if (entries.Passed() > 0)
        throw Failure(Shown(trail) + ": " + Count(entries.Passed(), "line is", "lines are") + " no entry", kMalformed);
}

}  // namespace tool
