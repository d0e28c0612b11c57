#include "qellib10/calc/calc_variable_index.h"

#include <algorithm>
#include <bit>

#include "qellib10/platform/text/multibyte.h"
#include "qellib10/platform/text/name_hash.h"

#include "qellib10/calc/calc_variable.h"

namespace qel {

int CalcVariableIndex::FindExact(std::span<const CCalcVariable> entries, std::string_view name) {
    return Find(entries, name, [](std::string_view a, std::string_view b) { return a == b; });
}

int CalcVariableIndex::FindFolded(std::span<const CCalcVariable> entries, std::string_view name) {
    return Find(entries, name, [](std::string_view a, std::string_view b) { return a == b || SameName(a, b); });
}

// Names that are equal byte for byte also have equal folded forms, so one table of folded hashes serves both look-ups.
template <typename Matches>
int CalcVariableIndex::Find(std::span<const CCalcVariable> entries, std::string_view name, Matches matches) {
    if (entries.empty()) return -1;
    if (m_aryLink.size() != entries.size() || m_nPage != CodePage()) Update(entries);
    for (std::int32_t at = SlotOf(HashFoldedName(name)).first; at >= 0; at = m_aryLink[at].next) {
        if (matches(entries[at].m_szName.View(), name)) return at;
    }
    return -1;
}

void CalcVariableIndex::Update(std::span<const CCalcVariable> entries) {
    if (m_nPage != CodePage() || m_aryLink.size() > entries.size() || entries.size() * 2 > m_arySlot.size()) {
        constexpr std::size_t kFewestSlots = 32;
        Invalidate();
        m_aryLink.clear();
        m_arySlot.assign(std::bit_ceil(std::max(entries.size() * 2, kFewestSlots)), Slot{});
        m_nPage = CodePage();
    }
    for (const CCalcVariable& entry : entries.subspan(m_aryLink.size())) Append(HashFoldedName(entry.m_szName.View()));
}

void CalcVariableIndex::Append(std::uint32_t hash) {
    const auto at = static_cast<std::int32_t>(m_aryLink.size());
    m_aryLink.push_back({.next = -1, .last = at});
    Slot& slot = SlotOf(hash);
    if (slot.first < 0) {
        slot = {.hash = hash, .first = at};
        return;
    }
    std::int32_t& last = m_aryLink[slot.first].last;
    m_aryLink[last].next = at;
    last = at;
}

// The slot of this hash, or the free one for it. At least half of the slots are free, so the search ends.
CalcVariableIndex::Slot& CalcVariableIndex::SlotOf(std::uint32_t hash) {
    const std::size_t mask = m_arySlot.size() - 1;
    std::size_t at = hash & mask;
    while (m_arySlot[at].first >= 0 && m_arySlot[at].hash != hash) at = (at + 1) & mask;
    return m_arySlot[at];
}

}  // namespace qel
