#include "trail_text.h"

namespace tool {

Json EntryJson(const qel::TrailEntry& entry, const std::string& hash, const std::string& signer) {
    return {{"trail", entry.trailId},
            {"number", entry.number},
            {"time", qel::TrailTimeText(entry.time)},
            {"clock", entry.clock ? Json(qel::TrailTimeText(*entry.clock)) : Json(nullptr)},
            {"boot", entry.bootId},
            {"bootTime", entry.bootTime},
            {"host", entry.host},
            {"application", entry.application},
            {"version", entry.version},
            {"user", entry.user},
            {"action", entry.action},
            {"object", entry.object},
            {"before", entry.before},
            {"after", entry.after},
            {"reason", entry.reason},
            {"cabinet", entry.cabinet},
            {"cabinetVersion", entry.cabinetVersion},
            {"size", entry.size},
            {"sha256", entry.sha256},
            {"statement", entry.statement},
            {"previous", entry.previous},
            {"hash", hash},
            {"signer", signer}};
}

std::string EntryLine(const qel::TrailEntry& entry) {
    std::string line = std::to_string(entry.number) + ' ' + qel::TrailTimeText(entry.time);
    if (!entry.user.empty()) line += ' ' + Shown(entry.user);
    line += ": " + Shown(entry.action);
    if (!entry.object.empty()) line += ' ' + Shown(entry.object);
    if (!entry.cabinet.empty()) line += ' ' + entry.cabinet + " version " + std::to_string(entry.cabinetVersion);
    if (!entry.before.empty() || !entry.after.empty()) {
        line += ": " + Shown(entry.before);
        line += (entry.before.empty() ? "" : " -> ") + Shown(entry.after);
    }
    if (!entry.reason.empty()) line += " (" + Shown(entry.reason) + ')';
    return line + '\n';
}

std::string ResultText(const qel::TrailReport& report) {
    return Count(report.entries, "entry", "entries") + ": " +
           (report.findingCount > 0 ? Count(report.findingCount, "finding", "findings")
            : report.isAnchored     ? "consistent"
                                    : "consistent, not anchored: " + report.unanchored);
}

std::string EntryText(const Json& entry) {
    std::string text;
    for (const auto& [name, value] : entry.items()) {
        const bool isEmpty = value.is_null() || value == "" || value == 0;
        if (!isEmpty) text += name + ": " + (value.is_string() ? Shown(value.get<std::string>()) : value.dump()) + '\n';
    }
    return text;
}

}  // namespace tool
