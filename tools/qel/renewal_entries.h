#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include <qellib10/record.h>

#include "tool.h"

// What a trail says about the versions that renewal records are about.
namespace tool {

/// The recorded versions of one cabinet, by number.
using RenewalEntries = std::map<std::uint64_t, qel::RecordedVersion>;

RenewalEntries RenewalEntriesOf(const qel::CabinetRecords::Cabinet& cabinet);

/// Whether a record says what the entry about its version says. A program that was interrupted may have left one
/// without names.
bool IsRecordAsIn(const CHistoryRenewInfo& record, const qel::RecordedVersion& entry);

/// What does not fit between a file of renewal records and a trail.
struct RenewalDifference {
    Status status = kGood;
    std::string cabinet = {};           // GUID; empty: of no cabinet that the trail knows
    qel::RecordedVersion version = {};  // at least its number
    std::string detail = {};
};

/// Compares files of renewal records with all cabinets of an archive. A file does not say whose it is: that is the
/// cabinet with whose entries most of its records agree.
class RenewalComparison {
public:
    explicit RenewalComparison(const std::vector<qel::CabinetRecords::Cabinet>& cabinets);

    /// Of each of @p records, number 1, 2, ..., and of those that are missing after them. From several threads.
    std::vector<RenewalDifference> Compare(const std::vector<CHistoryRenewInfo>& records) const;

private:
    using Cabinets = std::map<std::string, RenewalEntries>;  // by GUID

    const Cabinets::value_type* CabinetOf(const std::vector<CHistoryRenewInfo>& records) const;

    Cabinets m_cabinets;
    std::multimap<std::string, const Cabinets::value_type*> m_byRecord;  // by what a record says
};

}  // namespace tool
