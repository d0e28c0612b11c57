#include "qellib10/record/cabinet_records.h"

#include <map>
#include <optional>

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/crypto/digest.h"
#include "qellib10/record/text_forms.h"
#include "qellib10/record/trail_chain.h"
#include "qellib10/record/trail_file.h"
#include "qellib10/record/version_list.h"
#include "qellib10/secure/cabinet_reader.h"

namespace qel {

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
    const auto compare = [&] {
        const CFile file(CString(cabinetPath), CFile::modeRead | CFile::shareDenyNone);
        cabinet.guid = std::string(CabinetReader(file).Header().guid.GetString());
        auto known = m_state->cabinets.extract(cabinet.guid);
        if (known.empty()) {
            cabinet.versions = VersionList(cabinet.guid).With(file);  // none of them is known
        } else {
            cabinet.versions = known.mapped().With(file);
        }
    };
    return Succeeds("CabinetRecords::Compare", compare) ? 1 : 0;
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
