#pragma once

#include <vector>

#include "qellib10/platform/types.h"

namespace qel {

/// The ends of a cabinet's versions, as far as walks from the first one have found them, so that the next walk starts
/// near its destination. Of very many versions only every second, fourth, ... is kept, and the last one found.
class VersionEnds {
public:
    /// A version and its end, from the start of the file; number 0 is the header.
    struct Place {
        DWORD version;
        ULONGLONG end;
    };

    /// The last known place before @p version; @p start if there is none.
    Place Before(DWORD version, ULONGLONG start) const;
    /// @param place the version after one that was known
    void Add(const Place& place);
    void Clear();

private:
    static constexpr std::size_t kMost = 65536;

    std::vector<ULONGLONG> m_ends;  // of the versions m_step, 2 * m_step, ...
    DWORD m_step = 1;
    Place m_last = {};
};

}  // namespace qel
