#include "qellib10/record/cabinet_records.h"

#include <algorithm>
#include <map>
#include <optional>
#include <span>

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/crypto/digest.h"
#include "qellib10/record/text_forms.h"
#include "qellib10/record/trail_chain.h"
#include "qellib10/record/trail_file.h"
#include "qellib10/record/version_list.h"
#include "qellib10/secure/cabinet_reader.h"

namespace qel {
namespace {

CFile Opened(std::string_view path) { return CFile(CString(path), CFile::modeRead | CFile::shareDenyNone); }

std::string GuidOf(const CFile& cabinet) { return std::string(CabinetReader(cabinet).Header().guid.GetString()); }

}  // namespace

struct CabinetRecords::State {
    std::map<std::string, VersionList> cabinets;  // by GUID; those that were not compared

    void Take(std::string_view line) {
        std::optional<TrailEntry> entry;
        try {
            entry = ReadEntry(line).entry;
        } catch (const DataError&) {  // CheckTrail reports it
            return;
        }
        if (entry->cabinet.empty() || !IsOfRegistering(*entry)) return;
        cabinets.try_emplace(entry->cabinet, entry->cabinet).first->second.Take(*entry, Hex(Sha256(line)));
    }
};

CabinetRecords::CabinetRecords() : m_state(new State) {}
CabinetRecords::~CabinetRecords() = default;

int CabinetRecords::Read(std::string_view trailPath) { return Read(trailPath, {}); }

int CabinetRecords::Read(std::string_view trailPath, const TrailReceipt& last) {
    *m_state = {};
    return ReadOn(trailPath, last);
}

int CabinetRecords::ReadOn(std::string_view trailPath, const TrailReceipt& last) {
    const auto read = [&] {
        ReadChecked(trailPath, last, [&](std::string_view line) {
            // Most entries are about no cabinet; taking each apart would take as long as reading a trail does.
            if (line.find("\"cabinet\":\"{") != std::string_view::npos) m_state->Take(line);
        });
        for (auto& [guid, versions] : m_state->cabinets) versions.KeepInterrupted();
    };
    return Succeeds("CabinetRecords::Read", read) ? 1 : 0;
}

int CabinetRecords::Compare(std::string_view cabinetPath, Cabinet& cabinet) {
    cabinet = {};
    return Compare(cabinetPath, cabinet.guid,
                   [&](const RecordedVersion& version) { cabinet.versions.push_back(version); });
}

int CabinetRecords::Compare(std::string_view cabinetPath, std::string& guid,
                            const std::function<void(const RecordedVersion& version)>& take) {
    guid.clear();
    const auto compare = [&] {
        const CFile file = Opened(cabinetPath);
        guid = GuidOf(file);
        auto known = m_state->cabinets.extract(guid);
        VersionList none(guid);
        (known.empty() ? none : known.mapped()).Compare(file, take);
    };
    return Succeeds("CabinetRecords::Compare", compare) ? 1 : 0;
}

int CabinetRecords::TakeOut(std::string_view cabinetPath, CabinetRecords& one) {
    *one.m_state = {};
    const auto takeOut = [&] { one.m_state->cabinets.insert(m_state->cabinets.extract(GuidOf(Opened(cabinetPath)))); };
    return Succeeds("CabinetRecords::TakeOut", takeOut) ? 1 : 0;
}

bool CabinetRecords::IsUnfinished() const {
    return std::ranges::any_of(m_state->cabinets, [](const auto& each) { return each.second.IsUnfinished(); });
}

std::vector<CabinetRecords::Cabinet> CabinetRecords::All() const {
    std::vector<Cabinet> all;
    for (const auto& [guid, versions] : m_state->cabinets) all.push_back({guid, versions.Known()});
    return all;
}

std::string CabinetRecords::Sum() const {
    Sha256Sum sum;
    for (const auto& [guid, versions] : m_state->cabinets) {
        sum.Add(std::as_bytes(std::span(guid)));
        versions.AddTo(sum);
    }
    return Hex(sum.End());
}

std::vector<CabinetRecords::Cabinet> CabinetRecords::Rest() {
    std::vector<Cabinet> rest;
    for (auto& [guid, versions] : m_state->cabinets) {
        rest.push_back({guid, versions.Missing()});
        if (rest.back().versions.empty()) rest.pop_back();
    }
    m_state->cabinets.clear();
    return rest;
}

}  // namespace qel
