#include "checked_entries.h"

namespace tool {

CheckedEntries::CheckedEntries(const std::string& trail, std::uint64_t count, const std::string& head)
    : m_trail(trail), m_count(count), m_head(head) {
    if (m_reader.Open(Path(trail).View()) == 0) throw Named(trail, LastRefusal("cannot be read", kMalformed));
}

CheckedEntries::CheckedEntries(const std::string& trail, const qel::TrailReport& report)
    : CheckedEntries(trail, report.lines, report.findingCount == 0 ? report.head : "") {}

CheckedEntries::CheckedEntries(const std::string& trail, const qel::TrailReceipt& last)
    : CheckedEntries(trail, last.number, last.hash) {}

// Of a trail that is consistent, each line has the hash of the one before, so the last one's is that of all.
std::optional<qel::TrailEntry> CheckedEntries::Next() {
    const bool isConsistent = !m_head.empty();
    while (m_lines < m_count) {
        std::optional<qel::TrailEntry> entry = m_reader.Next();
        if (!entry && qel::LastFailure().kind == qel::FailureKind::kNone) break;
        if (!entry && qel::LastFailure().kind != qel::FailureKind::kData)
            throw Named(m_trail, LastRefusal("cannot be read", kMalformed));
        ++m_lines;
        if (!entry) ++m_passed;
        if (isConsistent && (!entry || entry->previous != m_previous)) break;
        if (!entry) continue;
        m_previous = m_reader.Hash();
        if (isConsistent && m_lines == m_count && m_previous != m_head) break;
        return entry;
    }
    if (m_lines < m_count || (isConsistent && m_lines > 0 && m_previous != m_head))
        throw Failure(Shown(m_trail) + ": has changed while it was read", kInconsistent);
    return std::nullopt;
}

}  // namespace tool
