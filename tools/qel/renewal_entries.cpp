#include "renewal_entries.h"

#include <algorithm>

namespace tool {
namespace {

// Records are in the code page, in which some characters are missing.
std::string AsRecorded(const std::string& utf8) { return std::string(Text(utf8).View()); }

std::string KeyOf(std::uint64_t version, std::string_view user, std::string_view file, std::string_view comment) {
    std::string key = std::to_string(version);
    for (const std::string_view text : {user, file, comment}) (key += '\0') += text;
    return key;
}

std::string KeyOf(std::uint64_t version, const CHistoryRenewInfo& record) {
    return KeyOf(version, record.GetOperator().View(), record.GetFileName().View(), record.GetComment().View());
}

std::string KeyOf(const qel::RecordedVersion& entry) {
    return KeyOf(entry.version, AsRecorded(entry.user), AsRecorded(entry.file), AsRecorded(entry.reason));
}

bool IsEnded(const qel::RecordedVersion& version) { return version.state != qel::RecordedState::kInterrupted; }

}  // namespace

RenewalEntries RenewalEntriesOf(const qel::CabinetRecords::Cabinet& cabinet) {
    RenewalEntries entries;
    for (const qel::RecordedVersion& version : cabinet.versions) entries.emplace(version.version, version);
    return entries;
}

bool IsRecordAsIn(const CHistoryRenewInfo& record, const qel::RecordedVersion& entry) {
    const bool mayBeNameless = entry.state != qel::RecordedState::kRecorded;
    return KeyOf(entry.version, record) == KeyOf(entry) || (mayBeNameless && record.GetOperator().IsEmpty());
}

RenewalComparison::RenewalComparison(const std::vector<qel::CabinetRecords::Cabinet>& cabinets) {
    for (const qel::CabinetRecords::Cabinet& cabinet : cabinets) {
        const auto made = m_cabinets.emplace(cabinet.guid, RenewalEntriesOf(cabinet)).first;
        for (const auto& [number, version] : made->second) m_byRecord.emplace(KeyOf(version), &*made);
    }
}

const RenewalComparison::Cabinets::value_type* RenewalComparison::CabinetOf(
    const std::vector<CHistoryRenewInfo>& records) const {
    std::map<const Cabinets::value_type*, std::size_t> fits;
    for (std::size_t i = 0; i < records.size(); ++i) {
        const auto [first, last] = m_byRecord.equal_range(KeyOf(i + 1, records[i]));
        for (auto each = first; each != last; ++each) ++fits[each->second];
    }
    // Of several that fit as well, the one with as many versions.
    const auto rank = [&](const auto& fit) {
        return std::pair(fit.second, fit.first->second.size() == records.size());
    };
    const auto best = std::ranges::max_element(fits, {}, rank);
    if (best != fits.end()) return best->first;
    return m_cabinets.size() == 1 ? &*m_cabinets.begin() : nullptr;
}

std::vector<RenewalDifference> RenewalComparison::Compare(const std::vector<CHistoryRenewInfo>& records) const {
    std::vector<RenewalDifference> differences;
    const Cabinets::value_type* const cabinet = CabinetOf(records);
    const RenewalEntries none;
    const RenewalEntries& entries = cabinet != nullptr ? cabinet->second : none;
    const std::string guid = cabinet != nullptr ? cabinet->first : "";
    for (std::size_t i = 0; i < records.size(); ++i) {
        const auto entry = entries.find(i + 1);
        if (entry == entries.end())
            differences.push_back({kNeverRecorded, guid, {.version = i + 1}, "has a renewal record, and no entry"});
        else if (!IsRecordAsIn(records[i], entry->second))
            differences.push_back({kRenewalDiffers, guid, entry->second, "is by another person, file or reason"});
    }
    for (auto entry = entries.upper_bound(records.size()); entry != entries.end(); ++entry)
        if (IsEnded(entry->second)) differences.push_back({kMissing, guid, entry->second, "has no renewal record"});
    return differences;
}

}  // namespace tool
