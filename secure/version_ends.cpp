#include "qellib10/secure/version_ends.h"

#include <algorithm>

namespace qel {

VersionEnds::Place VersionEnds::Before(DWORD version, ULONGLONG start) const {
    const auto kept = std::min<std::size_t>((version - 1) / m_step, m_ends.size());
    const auto number = static_cast<DWORD>(kept * m_step);
    if (m_last.version > number && m_last.version < version) return m_last;
    return {number, kept == 0 ? start : m_ends[kept - 1]};
}

void VersionEnds::Add(const Place& place) {
    m_last = place;
    if (place.version != (m_ends.size() + 1) * m_step) return;
    m_ends.push_back(place.end);
    if (m_ends.size() < kMost) return;
    for (std::size_t i = 0; i < kMost / 2; ++i) m_ends[i] = m_ends[2 * i + 1];
    m_ends.resize(kMost / 2);
    m_step *= 2;
}

void VersionEnds::Clear() { *this = {}; }

}  // namespace qel
